#pragma once

#include <Foundation/kernels/UnicodeKernels.h>
#include <Foundation/kernels/avx2/Vector.h>

namespace NSKernels {
namespace {

inline std::size_t asciiBytes(const char* bytes, std::size_t count) {
  std::size_t i = 0;
  for (; count - i >= width; i += width) {
    const std::uint32_t others = bitsOf(load(bytes + i));
    if (others != 0) return i + static_cast<std::size_t>(__builtin_ctz(others));
  }
  return i + scalarKernels.asciiBytes(bytes + i, count - i);
}

/// Whether bytes continue a sequence: 80 to BF.
inline __m256i continuationsIn(__m256i bytes) { return _mm256_cmpgt_epi8(eachByte(0xC0), bytes); }

inline std::uint32_t atLeast(__m256i bytes, int least) {
  return bitsOf(_mm256_cmpeq_epi8(_mm256_max_epu8(bytes, eachByte(least)), bytes));
}

inline std::size_t utf16Length(const char* bytes, std::size_t count) {
  std::size_t units = 0;
  for (; count >= width; bytes += width, count -= width) {
    const __m256i block = load(bytes);
    units += bitCount(~bitsOf(continuationsIn(block))) + bitCount(atLeast(block, 0xF0));
  }
  return units + scalarKernels.utf16Length(bytes, count);
}

/// The kinds of bytes in a block that begins with a character: those that continue a sequence, and those that
/// begin one of two or more, of three or more, and of four bytes; and those before a sequence that goes on
/// after the block, with their number.
struct Kinds {
  std::uint32_t continuing, two, three, four, wanted;
  std::size_t used;

  std::uint64_t expected() const {
    return std::uint64_t{two} << 1 | std::uint64_t{three} << 2 | std::uint64_t{four} << 3;
  }
};

inline Kinds kindsOf(__m256i block) {
  const std::uint32_t continuing = bitsOf(continuationsIn(block));
  Kinds kinds{continuing, bitsOf(block) & ~continuing, atLeast(block, 0xE0), 0, ~0U, width};
  if (kinds.three != 0) kinds.four = atLeast(block, 0xF0);
  if (kinds.expected() >> width != 0) {
    kinds.used = width - 1 - static_cast<std::size_t>(__builtin_clz(kinds.two));
    kinds.wanted = (1U << kinds.used) - 1;
  }
  return kinds;
}

/// Returns the bytes that begin no sequence, and those whose next byte belongs to an overlong sequence, a
/// surrogate or a value beyond U+10FFFF.
inline std::uint32_t wrongIn(__m256i block, const Kinds& kinds) {
  const std::uint32_t wrong = kinds.two & ~atLeast(block, 0xC2);
  if (kinds.three == 0) return wrong;
  const auto is = [block](int byte) { return bitsOf(_mm256_cmpeq_epi8(block, eachByte(byte))); };
  const auto nextBelow = [block](int byte) { return bitsOf(_mm256_cmpgt_epi8(eachByte(byte), block)) >> 1; };
  const std::uint32_t belowA0 = nextBelow(0xA0), below90 = nextBelow(0x90);
  return wrong | (is(0xE0) & belowA0) | (is(0xED) & ~belowA0) | (is(0xF0) & below90) | (is(0xF4) & ~below90) |
         atLeast(block, 0xF5);
}

inline bool isMalformed(__m256i block, const Kinds& kinds) {
  const auto expected = static_cast<std::uint32_t>(kinds.expected());
  return ((expected ^ kinds.continuing) | (wrongIn(block, kinds) & kinds.wanted)) != 0;
}

/// The code units that the bytes of a block complete: in each half of the vectors, those of eight bytes.
struct Units {
  __m256i even, odd;  // of the first and third, and of the second and fourth eight bytes
};

inline Units unitsOf(__m256i block, const Kinds& kinds) {
  const __m256i zero = _mm256_setzero_si256(), continuing = continuationsIn(block);
  const __m256i tags = _mm256_and_si256(_mm256_cmpgt_epi8(zero, block), eachByte(0xC0));
  const __m256i lower = _mm256_andnot_si256(tags, block);
  const __m256i middle = _mm256_and_si256(movedOn<1>(lower), continuing);
  const __m256i weights = eachUnit(0x4001);
  Units units{_mm256_maddubs_epi16(_mm256_unpacklo_epi8(lower, middle), weights),
              _mm256_maddubs_epi16(_mm256_unpackhi_epi8(lower, middle), weights)};
  if (kinds.three == 0) return units;
  const __m256i third = _mm256_and_si256(continuing, movedOn<1>(continuing));
  const __m256i upper = _mm256_and_si256(movedOn<2>(lower), third);
  units.even = _mm256_or_si256(units.even, _mm256_slli_epi16(_mm256_unpacklo_epi8(zero, upper), 4));
  units.odd = _mm256_or_si256(units.odd, _mm256_slli_epi16(_mm256_unpackhi_epi8(zero, upper), 4));
  if (kinds.four == 0) return units;
  const __m256i four = _mm256_cmpeq_epi8(_mm256_max_epu8(block, eachByte(0xF0)), block);
  const __m256i high = movedOn<2>(four), low = movedOn<3>(four);
  const auto withPairs = [](__m256i unit, __m256i isHigh, __m256i isLow) {
    const __m256i highs = _mm256_add_epi16(_mm256_srli_epi16(unit, 4), eachUnit(0xD7C0));
    const __m256i lows = _mm256_or_si256(_mm256_and_si256(unit, eachUnit(0x03FF)), eachUnit(0xDC00));
    return _mm256_blendv_epi8(_mm256_blendv_epi8(unit, highs, isHigh), lows, isLow);
  };
  return {withPairs(units.even, _mm256_unpacklo_epi8(high, high), _mm256_unpacklo_epi8(low, low)),
          withPairs(units.odd, _mm256_unpackhi_epi8(high, high), _mm256_unpackhi_epi8(low, low))};
}

inline char16_t* storeUnits(char16_t* to, const Units& units, std::uint32_t kept) {
  const auto storeEight = [&](__m256i vector, unsigned half) {
    storeHalf(to, vector, half, unitOrders, kept);
    to += bitCount(kept & 255);
    kept >>= 8;
  };
  storeEight(units.even, 0);
  storeEight(units.odd, 0);
  storeEight(units.even, 1);
  storeEight(units.odd, 1);
  return to;
}

inline char16_t* storeASCII(char16_t* to, const char* bytes) {
  for (int half = 0; half < 2; ++half, bytes += unitWidth, to += unitWidth)
    store(to, _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes))));
  return to;
}

inline std::size_t utf16FromUTF8(const char* bytes, std::size_t count, char16_t* units, std::size_t room) {
  std::size_t i = 0;
  char16_t* const end = units + room;
  while (count - i >= width && static_cast<std::size_t>(end - units) >= width) {
    const __m256i block = load(bytes + i);
    if (bitsOf(block) == 0) {
      units = storeASCII(units, bytes + i);
      i += width;
      continue;
    }
    const Kinds kinds = kindsOf(block);
    if (isMalformed(block, kinds)) break;
    const auto completed =
        static_cast<std::uint32_t>((kinds.two & ~kinds.three) << 1 | kinds.three << 2 | kinds.four << 3);
    const std::uint32_t ascii = ~(kinds.continuing | kinds.two);
    units = storeUnits(units, unitsOf(block, kinds), (ascii | completed) & kinds.wanted);
    i += kinds.used;
  }
  return i + scalarKernels.utf16FromUTF8(bytes + i, count - i, units, static_cast<std::size_t>(end - units));
}

}  // namespace
}  // namespace NSKernels
