#pragma once

#include <Foundation/kernels/UnicodeKernels.h>
#include <Foundation/kernels/avx2/Vector.h>

namespace NSKernels {
namespace {

inline __m256i atLeastUnit(__m256i units, int least) {
  return _mm256_cmpeq_epi16(_mm256_max_epu16(units, eachUnit(least)), units);
}

/// Whether code units are surrogates whose first six bits are those of `first`.
inline __m256i surrogatesFrom(__m256i units, int first) {
  return _mm256_cmpeq_epi16(_mm256_and_si256(units, eachUnit(0xFC00)), eachUnit(first));
}

inline std::size_t asciiUnits(const char16_t* units, std::size_t count) {
  std::size_t i = 0;
  for (; count - i >= unitWidth; i += unitWidth) {
    const std::uint32_t others = bitsOf(atLeastUnit(load(units + i), 0x80));
    if (others != 0) return i + static_cast<std::size_t>(__builtin_ctz(others)) / 2;
  }
  return i + scalarKernels.asciiUnits(units + i, count - i);
}

inline std::size_t unitsBefore(const char16_t* units, std::size_t count, char16_t unit) {
  std::size_t i = 0;
  for (; count - i >= unitWidth; i += unitWidth) {
    const std::uint32_t found = bitsOf(_mm256_cmpeq_epi16(load(units + i), eachUnit(unit)));
    if (found != 0) return i + static_cast<std::size_t>(__builtin_ctz(found)) / 2;
  }
  return i + scalarKernels.unitsBefore(units + i, count - i, unit);
}

inline std::size_t utf8Length(const char16_t* units, std::size_t count) {
  std::size_t twice = 0;  // every unit has two bits
  std::size_t i = 0;
  for (; count - i >= unitWidth; i += unitWidth) {
    const __m256i block = load(units + i);
    const __m256i surrogates =
        _mm256_cmpeq_epi16(_mm256_and_si256(block, eachUnit(0xF800)), eachUnit(0xD800));
    twice += width + bitCount(bitsOf(atLeastUnit(block, 0x80))) +
             bitCount(bitsOf(_mm256_andnot_si256(surrogates, atLeastUnit(block, 0x800))));
  }
  return twice / 2 + scalarKernels.utf8Length(units + i, count - i);
}

/// The kinds of code units in a block: those that have two or more bytes, those that have three, and the
/// halves of pairs, which have two of the four bytes each.
struct UnitKinds {
  __m256i two, three, high, low;
};

/// Returns the bits that the two bytes of each surrogate have in its place: the upper eleven of a pair, less
/// two, or the lower ten and those two.
inline __m256i withPairsSplit(__m256i units, const UnitKinds& kinds) {
  const __m256i high = _mm256_srli_epi16(_mm256_sub_epi16(units, eachUnit(0xD7C0)), 2);
  const __m256i before = _mm256_slli_epi16(movedOn<2>(units), 10);
  const __m256i low = _mm256_or_si256(_mm256_and_si256(units, eachUnit(0x03FF)), before);
  return _mm256_blendv_epi8(_mm256_blendv_epi8(units, high, kinds.high), low, kinds.low);
}

/// Returns the last two bytes of each code unit, with that of ASCII in the upper one.
inline __m256i lastBytesOf(__m256i units, const UnitKinds& kinds) {
  const __m256i following = _mm256_or_si256(kinds.three, kinds.low);
  __m256i tags = _mm256_blendv_epi8(eachUnit(0x80C0), eachUnit(0x8080), following);
  tags = _mm256_or_si256(tags, _mm256_and_si256(kinds.high, eachUnit(0x80F0)));
  const __m256i last = _mm256_slli_epi16(units, 8);
  const __m256i bits = _mm256_or_si256(_mm256_and_si256(last, eachUnit(0x3F00)),
                                       _mm256_and_si256(_mm256_srli_epi16(units, 6), eachUnit(0x003F)));
  return _mm256_blendv_epi8(last, _mm256_or_si256(bits, tags), kinds.two);
}

/// Stores code units of up to two bytes, two to a lane of which the last ones count.
inline char* storeShort(char* to, __m256i lastBytes, const UnitKinds& kinds) {
  const std::uint32_t two = bitsOf(_mm256_packs_epi16(kinds.two, kinds.two));
  for (unsigned half = 0; half < 2; ++half) {
    const std::uint32_t bits = two >> half * 16 & 255;
    storeHalf(to, lastBytes, half, shortOrders, bits);
    to += 8 + bitCount(bits);
  }
  return to;
}

/// Stores code units of any length, four bytes to a lane of which the last ones count.
inline char* storeLong(char* to, __m256i units, __m256i lastBytes, const UnitKinds& kinds) {
  const __m256i first =
      _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(units, 4), eachUnit(0x0F00)), eachUnit(0xE000));
  const __m256i even = _mm256_unpacklo_epi16(first, lastBytes), odd = _mm256_unpackhi_epi16(first, lastBytes);
  const std::uint32_t all = bitsOf(_mm256_packs_epi16(kinds.two, kinds.three));
  const auto storeFour = [&](__m256i vector, unsigned half, std::uint32_t bits) {
    const std::uint32_t order = (bits & 15) | (bits >> 4 & 0xF0);
    storeHalf(to, vector, half, longOrders, order);
    to += 4 + bitCount(order);
  };
  storeFour(even, 0, all);
  storeFour(odd, 0, all >> 4);
  storeFour(even, 1, all >> 16);
  storeFour(odd, 1, all >> 20);
  return to;
}

inline std::size_t utf8FromUTF16(const char16_t* units, std::size_t count, char* bytes, std::size_t room) {
  std::size_t i = 0;
  char* const end = bytes + room;
  while (count - i >= unitWidth && static_cast<std::size_t>(end - bytes) >= 4 * unitWidth) {
    __m256i block = load(units + i);
    UnitKinds kinds{atLeastUnit(block, 0x80), atLeastUnit(block, 0x800), {}, {}};
    std::size_t used = unitWidth;
    if (bitsOf(kinds.two) == 0) {
      const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(block, block), 0xE8);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), _mm256_castsi256_si128(packed));
      bytes += unitWidth;
    } else if (bitsOf(kinds.three) == 0) {
      bytes = storeShort(bytes, lastBytesOf(block, kinds), kinds);
    } else {
      kinds.high = surrogatesFrom(block, 0xD800);
      kinds.low = surrogatesFrom(block, 0xDC00);
      const __m256i surrogates = _mm256_or_si256(kinds.high, kinds.low);
      const std::uint32_t high = bitsOf(kinds.high), low = bitsOf(kinds.low);
      if ((high << 2 ^ low) != 0) break;
      // A pair that goes on after the block is left to the next one.
      if (high >> 31 != 0) --used;
      kinds.three = _mm256_andnot_si256(surrogates, kinds.three);
      block = withPairsSplit(block, kinds);
      bytes = storeLong(bytes, block, lastBytesOf(block, kinds), kinds) - (used < unitWidth ? 2 : 0);
    }
    i += used;
  }
  return i + scalarKernels.utf8FromUTF16(units + i, count - i, bytes, static_cast<std::size_t>(end - bytes));
}

}  // namespace
}  // namespace NSKernels
