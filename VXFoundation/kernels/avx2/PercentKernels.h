#pragma once

#include <immintrin.h>

#include <VXFoundation/kernels/CodecKernels.h>
#include <VXFoundation/kernels/Percent.h>
#include <VXFoundation/kernels/Radix.h>

namespace VXKernels {
namespace {

inline constexpr std::size_t blockWidth = 16;

inline __m128i load(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }
inline void store(void* to, __m128i bytes) { _mm_storeu_si128(static_cast<__m128i*>(to), bytes); }

struct alignas(blockWidth) Block {
  unsigned char at[blockWidth];
  __m128i vector() const { return load(at); }
};

/// Byte 16h + l belongs to the set if bit h is set in entry l.
constexpr Block unreservedByLowHalf() {
  Block rows{};
  const CharacterSet unreserved = unreservedCharacters();
  for (unsigned c = 0; c < 128; ++c)
    if (unreserved.has[c]) rows.at[c % 16] = static_cast<unsigned char>(rows.at[c % 16] | 1u << c / 16);
  return rows;
}

inline __m128i highHalves(__m128i bytes) {
  return _mm_and_si128(_mm_srli_epi16(bytes, 4), _mm_set1_epi8(15));
}

inline unsigned reservedIn(__m128i bytes) {
  static constexpr Block unreserved = unreservedByLowHalf();
  const Block bits{1, 2, 4, 8, 16, 32, 64, 128};
  const __m128i row = _mm_shuffle_epi8(bits.vector(), highHalves(bytes));
  const __m128i known = _mm_and_si128(_mm_shuffle_epi8(unreserved.vector(), bytes), row);
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(known, _mm_setzero_si128())));
}

/// For each choice of which of four bytes to escape: the order in which the result is picked from the bytes
/// themselves (at 0), their high digits (at 4), their low digits (at 8) and the percent sign (at 12).
struct Escapes {
  Block order[16];
  unsigned char length[16];
};

constexpr Escapes escapesOfFour() {
  Escapes escapes{};
  for (unsigned reserved = 0; reserved < 16; ++reserved) {
    unsigned char* at = escapes.order[reserved].at;
    for (unsigned char byte = 0; byte < 4; ++byte) {
      const bool escaped = reserved >> byte & 1;
      *at++ = escaped ? 12 : byte;
      if (escaped) *at++ = static_cast<unsigned char>(4 + byte), *at++ = static_cast<unsigned char>(8 + byte);
    }
    escapes.length[reserved] = static_cast<unsigned char>(at - escapes.order[reserved].at);
  }
  return escapes;
}

inline std::byte* storeFour(std::byte* text, unsigned reserved, __m128i parts) {
  static constexpr Escapes escapes = escapesOfFour();
  store(text, _mm_shuffle_epi8(parts, escapes.order[reserved & 15].vector()));
  return text + escapes.length[reserved & 15];
}

inline std::byte* encodeBlock(std::byte* text, __m128i bytes, unsigned reserved) {
  const __m128i digits = load(_base16Alphabet);
  const __m128i high = _mm_shuffle_epi8(digits, highHalves(bytes));
  const __m128i low = _mm_shuffle_epi8(digits, _mm_and_si128(bytes, _mm_set1_epi8(15)));
  const __m128i firstParts = _mm_unpacklo_epi32(bytes, low),
                firstSigns = _mm_unpacklo_epi32(high, _mm_set1_epi8('%'));
  const __m128i lastParts = _mm_unpackhi_epi32(bytes, low),
                lastSigns = _mm_unpackhi_epi32(high, _mm_set1_epi8('%'));
  text = storeFour(text, reserved, _mm_unpacklo_epi32(firstParts, firstSigns));
  text = storeFour(text, reserved >> 4, _mm_unpackhi_epi32(firstParts, firstSigns));
  text = storeFour(text, reserved >> 8, _mm_unpacklo_epi32(lastParts, lastSigns));
  return storeFour(text, reserved >> 12, _mm_unpackhi_epi32(lastParts, lastSigns));
}

/// Returns the values of hexadecimal digits; -1 for all other characters.
inline __m128i valuesOf(__m128i characters) {
  const auto inRange = [](__m128i places, char size) {
    return _mm_cmpeq_epi8(_mm_min_epu8(places, _mm_set1_epi8(static_cast<char>(size - 1))), places);
  };
  const __m128i decimal = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
  const __m128i letter = _mm_sub_epi8(_mm_or_si128(characters, _mm_set1_epi8(0x20)), _mm_set1_epi8('a'));
  const __m128i letterValue =
      _mm_blendv_epi8(_mm_set1_epi8(-1), _mm_add_epi8(letter, _mm_set1_epi8(10)), inRange(letter, 6));
  return _mm_blendv_epi8(letterValue, decimal, inRange(decimal, 10));
}

/// For each choice among eight bytes, the order that moves the chosen ones to the front.
struct Compressions {
  struct {
    unsigned char at[8];
  } order[256];
};

constexpr Compressions compressionsOfEight() {
  Compressions compressions{};
  for (unsigned chosen = 0; chosen < 256; ++chosen)
    for (unsigned byte = 0, place = 0; byte < 8; ++byte)
      if (chosen >> byte & 1) compressions.order[chosen].at[place++] = static_cast<unsigned char>(byte);
  return compressions;
}

inline std::byte* storeChosen(std::byte* to, unsigned chosen, __m128i eight) {
  static constexpr Compressions compressions = compressionsOfEight();
  const __m128i order = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&compressions.order[chosen & 255]));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(eight, order));
  return to + __builtin_popcount(chosen & 255);
}

inline std::size_t percentEncode(const std::byte* bytes, std::size_t count, std::byte* text) {
  std::byte* end = text;
  for (; count >= blockWidth + 2; bytes += blockWidth, count -= blockWidth) {
    const __m128i block = load(bytes);
    const unsigned reserved = reservedIn(block);
    if (reserved == 0) {
      store(end, block);
      end += blockWidth;
    } else {
      end = encodeBlock(end, block, reserved);
    }
  }
  return static_cast<std::size_t>(end - text) + scalarKernels.percentEncode(bytes, count, end);
}

inline std::size_t percentDecode(const std::byte* text, std::size_t count, std::byte* bytes) {
  std::byte* end = bytes;
  unsigned digitsAhead = 0;  // those in the next block that belong to an escape in the previous one
  for (; count >= blockWidth + 2; text += blockWidth, count -= blockWidth) {
    const __m128i characters = load(text);
    const __m128i signs = _mm_cmpeq_epi8(characters, _mm_set1_epi8('%'));
    const auto escapes = static_cast<unsigned>(_mm_movemask_epi8(signs));
    if ((escapes | digitsAhead) == 0) {
      store(end, characters);
      end += blockWidth;
      continue;
    }
    const __m128i high = valuesOf(load(text + 1)), low = valuesOf(load(text + 2));
    if (_mm_movemask_epi8(_mm_and_si128(signs, _mm_or_si128(high, low))) != 0) return malformed;
    const __m128i shifted = _mm_and_si128(_mm_slli_epi16(high, 4), _mm_set1_epi8(-16));
    const __m128i decoded = _mm_blendv_epi8(characters, _mm_or_si128(shifted, low), signs);
    const unsigned chosen = ~(digitsAhead | escapes << 1 | escapes << 2);
    end = storeChosen(end, chosen, decoded);
    end = storeChosen(end, chosen >> 8, _mm_srli_si128(decoded, 8));
    digitsAhead = escapes >> 15 | escapes >> 14;
  }
  // The digits ahead are the first characters of the rest, and have already been decoded.
  const std::size_t done = static_cast<std::size_t>(__builtin_popcount(digitsAhead));
  const std::size_t rest = scalarKernels.percentDecode(text + done, count - done, end);
  return rest == malformed ? malformed : static_cast<std::size_t>(end - bytes) + rest;
}

}  // namespace
}  // namespace VXKernels
