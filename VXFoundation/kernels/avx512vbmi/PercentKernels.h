#pragma once

#include <VXFoundation/kernels/CodecKernels.h>
#include <VXFoundation/kernels/Percent.h>
#include <VXFoundation/kernels/avx512vbmi/Block.h>

namespace VXKernels {
namespace {

/// Returns one half of the 128 characters: zero for the unreserved ones, the top bit set for the others.
constexpr Block reservedFrom(std::size_t first) {
  Block half{};
  const CharacterSet unreserved = unreservedCharacters();
  for (std::size_t i = 0; i < width; ++i) half.at[i] = unreserved.has[first + i] ? 0 : 0x80;
  return half;
}

/// Returns the byte of a block that each output position belongs to if every byte takes three positions.
constexpr Block thirdsFrom(std::size_t first) {
  Block thirds{};
  for (std::size_t i = 0; i < width; ++i) thirds.at[i] = static_cast<unsigned char>((first + i) / 3);
  return thirds;
}

/// Returns the mask of the output positions at place 0, 1 or 2 of their three.
constexpr __mmask64 placesFrom(std::size_t first, std::size_t place) {
  __mmask64 places = 0;
  for (std::size_t i = 0; i < width; ++i)
    if ((first + i) % 3 == place) places |= 1ull << i;
  return places;
}

inline std::size_t storeChosen(std::byte* to, __mmask64 chosen, __m512i from) {
  // Compresses into a register: the form that writes to memory is many times slower on some machines.
  const auto count = static_cast<std::size_t>(_mm_popcnt_u64(chosen));
  _mm512_mask_storeu_epi8(to, firstBytes(count), _mm512_maskz_compress_epi8(chosen, from));
  return count;
}

inline __mmask64 reservedIn(__m512i bytes) {
  static constexpr Block lower = reservedFrom(0), upper = reservedFrom(width);
  const __m512i marks = _mm512_permutex2var_epi8(lower.vector(), bytes, upper.vector());
  return _mm512_movepi8_mask(_mm512_or_si512(bytes, marks));
}

/// Stores a third of an escaped block: every byte takes three places, of which an unreserved byte keeps only
/// the first.
template <std::size_t first>
std::size_t storeThird(std::byte* text, __m512i bytes, __m512i firstPlaces, __mmask64 wanted,
                       __m512i reserved) {
  static constexpr Block thirds = thirdsFrom(first * width), digits = digitCharacters(base16);
  constexpr __mmask64 characterPlaces = placesFrom(first * width, 0),
                      highPlaces = placesFrom(first * width, 1);
  const __m512i spread = _mm512_permutexvar_epi8(thirds.vector(), bytes);
  const __m512i nibbles = _mm512_mask_mov_epi8(spread, highPlaces, _mm512_srli_epi16(spread, 4));
  const __m512i hexadecimal = _mm512_permutexvar_epi8(nibbles, digits.vector());
  const __m512i characters =
      _mm512_mask_permutexvar_epi8(hexadecimal, characterPlaces, thirds.vector(), firstPlaces);
  const __mmask64 escapes = _mm512_movepi8_mask(_mm512_permutexvar_epi8(thirds.vector(), reserved));
  const __mmask64 present =
      _mm512_movepi8_mask(_mm512_permutexvar_epi8(thirds.vector(), _mm512_movm_epi8(wanted)));
  return storeChosen(text, (escapes | characterPlaces) & present, characters);
}

inline std::size_t encodeBlock(std::byte* text, __m512i bytes, __mmask64 wanted) {
  const __mmask64 reserved = reservedIn(bytes) & wanted;
  if (reserved == 0) {
    _mm512_mask_storeu_epi8(text, wanted, bytes);
    return static_cast<std::size_t>(_mm_popcnt_u64(wanted));
  }
  const __m512i firstPlaces = _mm512_mask_mov_epi8(bytes, reserved, _mm512_set1_epi8('%'));
  const __m512i marks = _mm512_movm_epi8(reserved);
  std::byte* end = text;
  end += storeThird<0>(end, bytes, firstPlaces, wanted, marks);
  end += storeThird<1>(end, bytes, firstPlaces, wanted, marks);
  end += storeThird<2>(end, bytes, firstPlaces, wanted, marks);
  return static_cast<std::size_t>(end - text);
}

/// Returns the values of hexadecimal digits; the top bit is set for all other characters.
inline __m512i hexadecimalValues(__m512i characters) {
  const __m512i values = valuesOf<base16>(characters);
  return _mm512_or_si512(values, _mm512_and_si512(characters, _mm512_set1_epi8(-128)));
}

inline std::size_t percentEncode(const std::byte* bytes, std::size_t count, std::byte* text) {
  std::byte* end = text;
  for (std::size_t i = 0; i < count; i += width) {
    const __mmask64 wanted = firstBytes(count - i);
    end += encodeBlock(end, _mm512_maskz_loadu_epi8(wanted, bytes + i), wanted);
  }
  return static_cast<std::size_t>(end - text);
}

inline std::size_t percentDecode(const std::byte* text, std::size_t count, std::byte* bytes) {
  std::byte* end = bytes;
  __mmask64 digitsAhead = 0;  // those in the next block that belong to an escape in the previous one
  __mmask64 faults = 0;
  for (std::size_t i = 0; i < count; i += width) {
    const std::size_t left = count - i;
    const __mmask64 wanted = firstBytes(left);
    const __m512i characters = _mm512_maskz_loadu_epi8(wanted, text + i);
    const __mmask64 escapes = _mm512_cmpeq_epi8_mask(characters, _mm512_set1_epi8('%'));
    __m512i decoded = characters;
    if (escapes != 0) {
      // Characters beyond the end are read as NUL, which is not a digit.
      const __m512i high = hexadecimalValues(_mm512_maskz_loadu_epi8(firstBytes(left - 1), text + i + 1));
      const __m512i low =
          hexadecimalValues(_mm512_maskz_loadu_epi8(left > 2 ? firstBytes(left - 2) : 0, text + i + 2));
      faults |= escapes & _mm512_movepi8_mask(_mm512_or_si512(high, low));
      const __m512i joined =
          _mm512_ternarylogic_epi64(_mm512_slli_epi16(high, 4), _mm512_set1_epi8(-16), low, 0xEA);
      decoded = _mm512_mask_mov_epi8(characters, escapes, joined);
    }
    const __mmask64 digits = digitsAhead | escapes << 1 | escapes << 2;
    end += storeChosen(end, wanted & ~digits, decoded);
    digitsAhead = escapes >> 63 | escapes >> 62;
  }
  return faults == 0 ? static_cast<std::size_t>(end - bytes) : malformed;
}

}  // namespace
}  // namespace VXKernels
