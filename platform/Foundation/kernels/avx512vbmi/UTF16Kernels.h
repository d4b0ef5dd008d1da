#pragma once

#include <Foundation/kernels/UnicodeKernels.h>
#include <Foundation/kernels/avx512vbmi/Vector.h>

namespace NSKernels {
namespace {

template <unsigned least>
__mmask32 atLeastUnit(__m512i units) {
  return _mm512_cmpge_epu16_mask(units, unitsOf<least>());
}

/// Whether code units are surrogates whose first six bits are those of `first`.
template <unsigned first>
__mmask32 surrogatesFrom(__m512i units) {
  const __m512i tags = _mm512_and_si512(units, unitsOf<0xFC00>());
  return _mm512_cmpeq_epi16_mask(tags, unitsOf<first>());
}

inline std::size_t asciiUnits(const char16_t* units, std::size_t count) {
  for (std::size_t i = 0; i < count; i += unitWidth) {
    const __mmask32 others = atLeastUnit<0x80>(loadUnits(units + i, count - i));
    if (others != 0) return i + static_cast<std::size_t>(__builtin_ctz(others));
  }
  return count;
}

inline std::size_t unitsBefore(const char16_t* units, std::size_t count, char16_t unit) {
  const __m512i sought = _mm512_set1_epi16(static_cast<short>(unit));
  for (std::size_t i = 0; i < count; i += unitWidth) {
    const __mmask32 equal = _mm512_cmpeq_epi16_mask(loadUnits(units + i, count - i), sought);
    const __mmask32 found = equal & firstUnits(count - i);
    if (found != 0) return i + static_cast<std::size_t>(__builtin_ctz(found));
  }
  return count;
}

inline std::size_t utf8Length(const char16_t* units, std::size_t count) {
  std::size_t bytes = count;
  for (std::size_t i = 0; i < count; i += unitWidth) {
    const __m512i block = loadUnits(units + i, count - i);
    const __mmask32 three = atLeastUnit<0x800>(block);
    const __mmask32 surrogates = three & (surrogatesFrom<0xD800>(block) | surrogatesFrom<0xDC00>(block));
    bytes += bitCount(atLeastUnit<0x80>(block)) + bitCount(three & ~surrogates);
  }
  return bytes;
}

inline std::size_t storeBytes(char* to, __m512i from, __mmask64 kept, std::size_t room) {
  const std::size_t count = bitCount(kept);
  // Compresses into a register: the form that writes to memory is many times slower on some machines.
  const __m512i bytes = _mm512_maskz_compress_epi8(kept, from);
  if (room >= width)
    _mm512_storeu_si512(to, bytes);
  else
    _mm512_mask_storeu_epi8(to, firstBytes(count), bytes);
  return count;
}

// A block is 31 code units and, in front of them, the last one of the block before, so that a pair that
// begins there is seen as a whole. Each half of a pair is two bytes of the four.
inline constexpr std::size_t unitsBack = 1, unitStep = unitWidth - unitsBack;

/// Returns each code unit's predecessor, zero for that of the first.
inline __m512i predecessors(__m512i units) {
  const __m512i ends = _mm512_alignr_epi32(units, _mm512_setzero_si512(), 15);
  return _mm512_or_si512(_mm512_slli_epi32(units, 16), _mm512_srli_epi32(ends, 16));
}

inline __m512i unitBlockAt(const char16_t* units, std::size_t count, std::size_t at) {
  if (at == 0) return predecessors(loadUnits(units, count < unitStep ? count : unitStep));
  return loadUnits(units + at - unitsBack, count - at + unitsBack);
}

/// The kinds of code units in a block: those that have two or more bytes, those that have three, and the
/// halves of pairs, which have two of the four bytes each.
struct UnitKinds {
  __mmask32 two, three, high, low;
};

/// Returns the bits that the two bytes of each surrogate have in its place: the upper eleven of a pair, less
/// two, or the lower ten and those two.
inline __m512i withPairsSplit(__m512i units, const UnitKinds& kinds) {
  const __m512i high = _mm512_srli_epi16(_mm512_sub_epi16(units, unitsOf<0xD7C0>()), 2);
  const __m512i before = _mm512_slli_epi16(predecessors(units), 10);
  const __m512i low = _mm512_ternarylogic_epi32(unitsOf<0x03FF>(), units, before, 0xCA);
  return _mm512_mask_mov_epi16(_mm512_mask_mov_epi16(units, kinds.high, high), kinds.low, low);
}

/// Returns the last two bytes of each code unit, with that of ASCII in the upper one.
inline __m512i lastBytesOf(__m512i units, const UnitKinds& kinds) {
  __m512i tags = _mm512_mask_mov_epi16(unitsOf<0x80C0>(), kinds.three | kinds.low, unitsOf<0x8080>());
  tags = _mm512_mask_mov_epi16(tags, kinds.high, unitsOf<0x80F0>());
  const __m512i last = _mm512_slli_epi16(units, 8);
  const __m512i bits = _mm512_ternarylogic_epi32(unitsOf<0xFF00>(), last, _mm512_srli_epi16(units, 6), 0xCA);
  // (bits & 3F3F) | tags
  const __m512i both = _mm512_ternarylogic_epi32(bits, unitsOf<0x3F3F>(), tags, 0xEA);
  return _mm512_mask_mov_epi16(last, kinds.two, both);
}

inline std::size_t storeShort(char* to, __m512i lastBytes, const UnitKinds& kinds, __mmask32 wanted,
                              std::size_t room) {
  const __mmask64 kept =
      _pdep_u64(wanted, 0xAAAA'AAAA'AAAA'AAAA) | _pdep_u64(wanted & kinds.two, 0x5555'5555'5555'5555);
  return storeBytes(to, lastBytes, kept, room);
}

inline std::size_t storeHalf(char* to, __m512i bytes, const UnitKinds& kinds, __mmask32 wanted, unsigned from,
                             std::size_t room) {
  const auto every = [from, wanted](__mmask32 units, __mmask64 places) {
    return _pdep_u64((units & wanted) >> from, places);
  };
  const __mmask64 kept = every(wanted, 0x8888'8888'8888'8888) | every(kinds.two, 0x4444'4444'4444'4444) |
                         every(kinds.three, 0x2222'2222'2222'2222);
  return storeBytes(to, bytes, kept, room);
}

/// Stores code units of any length, four bytes to a lane of which the last ones count.
inline std::size_t storeLong(char* to, __m512i units, __m512i lastBytes, const UnitKinds& kinds,
                             __mmask32 wanted, std::size_t room) {
  // Unpacking takes four units of each quarter of a vector.
  const __m512i order = _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7);
  // (units >> 4 & 0F00) | E000
  const __m512i firstBytes =
      _mm512_ternarylogic_epi32(_mm512_srli_epi16(units, 4), unitsOf<0x0F00>(), unitsOf<0xE000>(), 0xEA);
  const __m512i first = _mm512_permutexvar_epi64(order, firstBytes);
  const __m512i last = _mm512_permutexvar_epi64(order, lastBytes);
  const std::size_t count = storeHalf(to, _mm512_unpacklo_epi16(first, last), kinds, wanted, 0, room);
  return count + storeHalf(to + count, _mm512_unpackhi_epi16(first, last), kinds, wanted, 16, room - count);
}

inline std::size_t utf8FromUTF16(const char16_t* units, std::size_t count, char* bytes, std::size_t room) {
  for (std::size_t at = 0; at <= count; at += unitStep) {
    __m512i block = unitBlockAt(units, count, at);
    const __mmask32 wanted = firstUnits(count - at + unitsBack) & ~__mmask32{1};
    UnitKinds kinds{atLeastUnit<0x80>(block), atLeastUnit<0x800>(block), 0, 0};
    std::size_t written = 0;
    if (kinds.three == 0) {
      written = storeShort(bytes, lastBytesOf(block, kinds), kinds, wanted, room);
    } else {
      const __mmask32 high = surrogatesFrom<0xD800>(block), low = surrogatesFrom<0xDC00>(block);
      if ((high | low) != 0) {
        const __mmask32 lone = (high << 1 ^ low) & ~__mmask32{1};
        if (lone != 0) {
          // Where a low surrogate is missing, the high one before it is the fault.
          const auto lane = static_cast<std::size_t>(__builtin_ctz(lone));
          return at + lane - unitsBack - (low >> lane & 1 ? 0 : 1);
        }
        kinds = {kinds.two, kinds.three & ~(high | low), high, low};
        block = withPairsSplit(block, kinds);
      }
      written = storeLong(bytes, block, lastBytesOf(block, kinds), kinds, wanted, room);
    }
    bytes += written;
    room -= written;
  }
  return count;
}

}  // namespace
}  // namespace NSKernels
