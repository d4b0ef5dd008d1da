#pragma once

#include <Foundation/kernels/UnicodeKernels.h>
#include <Foundation/kernels/avx512vbmi/Vector.h>

namespace NSKernels {
namespace {

inline std::size_t asciiBytes(const char* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; i += width) {
    const __mmask64 others = _mm512_movepi8_mask(loadBytes(bytes + i, count - i));
    if (others != 0) return i + static_cast<std::size_t>(__builtin_ctzll(others));
  }
  return count;
}

/// Whether bytes continue a sequence: 80 to BF.
inline __mmask64 continuationsIn(__m512i bytes) { return _mm512_cmplt_epi8_mask(bytes, bytesOf<0xC0>()); }

template <unsigned char least>
__mmask64 atLeast(__m512i bytes) {
  return _mm512_cmpge_epu8_mask(bytes, bytesOf<least>());
}

inline std::size_t utf16Length(const char* bytes, std::size_t count) {
  std::size_t units = 0;
  for (std::size_t i = 0; i < count; i += width) {
    const __m512i block = loadBytes(bytes + i, count - i);
    units += bitCount(~continuationsIn(block) & firstBytes(count - i)) + bitCount(atLeast<0xF0>(block));
  }
  return units;
}

// A block is 61 bytes and, in front of them, the last three of the block before, so that a sequence that
// begins there is seen as a whole. A byte that completes a code unit has a unit in the output: the last one
// of each sequence and, if it has four, the third.
inline constexpr std::size_t malformed = static_cast<std::size_t>(-1);
inline constexpr std::size_t lookBack = 3, step = width - lookBack;
inline constexpr __mmask64 allButLookBack = ~__mmask64{0} << lookBack;

/// Returns the order in which each lane takes the byte `distance` lanes further on.
constexpr Block lanesFrom(int distance) {
  Block lanes{};
  for (int i = 0; i < 64; ++i) lanes.at[i] = static_cast<unsigned char>(i + distance);
  return lanes;
}

inline __m512i blockAt(const char* bytes, std::size_t count, std::size_t at) {
  static constexpr Block lanes = lanesFrom(-static_cast<int>(lookBack));
  if (at > 0) return loadBytes(bytes + at - lookBack, count - at + lookBack);
  return _mm512_maskz_permutexvar_epi8(allButLookBack, lanes.vector(), loadBytes(bytes, count));
}

/// The bytes that may follow each lead byte, C0 to FF: the first of them, and how many more there are.
struct Followers {
  Block first, more;
};
constexpr Followers followersOfLeads() {
  Followers followers{};
  for (unsigned lead = 0xC0; lead <= 0xFF; ++lead) {
    const bool isLead = lead >= 0xC2 && lead <= 0xF4;
    const unsigned first = !isLead ? 0xFF : lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned last = !isLead ? 0xFF : lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    followers.first.at[lead - 0xC0] = static_cast<unsigned char>(first);
    followers.more.at[lead - 0xC0] = static_cast<unsigned char>(last - first);
  }
  return followers;
}

/// The kinds of bytes in a block: those that continue a sequence, and those that begin one of two or more, of
/// three or more, and of four bytes.
struct Kinds {
  __mmask64 continuing, two, three, four;
};

inline __m512i moved(__m512i block, __mmask64 wanted, const Block& lanes) {
  return _mm512_maskz_permutexvar_epi8(wanted, lanes.vector(), block);
}

/// Lead bytes whose next byte is not one of their followers.
inline __mmask64 wrongPairsIn(__m512i block, const Kinds& kinds) {
  static constexpr Followers followers = followersOfLeads();
  static constexpr Block lanes = lanesFrom(1);
  if (kinds.three == 0) return kinds.two & ~atLeast<0xC2>(block);
  const __m512i first = _mm512_permutexvar_epi8(block, followers.first.vector());
  const __m512i more = _mm512_permutexvar_epi8(block, followers.more.vector());
  const __m512i next = moved(block, ~__mmask64{0}, lanes);
  return _mm512_mask_cmpgt_epu8_mask(kinds.two, _mm512_sub_epi8(next, first), more);
}

inline bool isMalformed(__m512i block, const Kinds& kinds) {
  const __mmask64 expected = kinds.two << 1 | kinds.three << 2 | kinds.four << 3;
  return (((expected ^ kinds.continuing) & allButLookBack) |
          (wrongPairsIn(block, kinds) & allButLookBack >> 1)) != 0;
}

/// What the bytes of a block contribute to the code units that they, the next ones and the ones after these
/// complete: six or seven bits, or none.
struct Bits {
  __m512i lower, middle, upper;
};

inline Bits bitsOf(__m512i block, const Kinds& kinds) {
  const __m512i bits =
      _mm512_mask_mov_epi8(block, kinds.continuing | kinds.two, _mm512_and_si512(block, bytesOf<0x3F>()));
  return {bits, _mm512_maskz_mov_epi8(kinds.continuing >> 1, bits),
          _mm512_maskz_mov_epi8((kinds.continuing & kinds.continuing << 1) >> 2, bits)};
}

/// Returns the order in which each lane of 16 bits takes its byte of one half of a block from one vector, and
/// above it, from another vector, the byte `distance` lanes before.
constexpr Block pairsOfHalf(std::size_t half, std::size_t distance) {
  Block pairs{};
  for (std::size_t i = 0; i < width; ++i)
    pairs.at[i] = static_cast<unsigned char>(half * unitWidth + i / 2 + i % 2 * (width - distance));
  return pairs;
}

/// Returns the code units that the lanes of half a block complete.
template <std::size_t half>
__m512i unitsOfHalf(const Bits& bits, const Kinds& kinds) {
  static constexpr Block oneBack = pairsOfHalf(half, 1), twoBack = pairsOfHalf(half, 2);
  const __m512i pairs = _mm512_permutex2var_epi8(bits.lower, oneBack.vector(), bits.middle);
  __m512i units = _mm512_maddubs_epi16(pairs, unitsOf<0x4001>());
  if (kinds.three == 0) return units;
  const __m512i above = moved(bits.upper, 0xAAAA'AAAA'AAAA'AAAA, twoBack);
  units = _mm512_or_si512(units, _mm512_slli_epi16(above, 4));
  if (kinds.four == 0) return units;
  const auto halfOf = [](__mmask64 mask) { return static_cast<__mmask32>(mask >> half * unitWidth); };
  const __m512i high = _mm512_add_epi16(_mm512_srli_epi16(units, 4), unitsOf<0xD7C0>());
  // (units & 03FF) | DC00
  const __m512i low = _mm512_ternarylogic_epi32(units, unitsOf<0x03FF>(), unitsOf<0xDC00>(), 0xEA);
  units = _mm512_mask_mov_epi16(units, halfOf(kinds.four << 2), high);
  return _mm512_mask_mov_epi16(units, halfOf(kinds.four << 3), low);
}

inline std::size_t storeUnits(char16_t* to, __m512i units, __mmask32 kept, std::size_t room) {
  const std::size_t count = bitCount(kept);
  const __m512i compressed = _mm512_maskz_compress_epi16(kept, units);
  if (room >= unitWidth)
    _mm512_storeu_si512(to, compressed);
  else
    _mm512_mask_storeu_epi16(to, firstUnits(count), compressed);
  return count;
}

/// Converts the wanted lanes of a block. Returns the number of code units, or `malformed`.
[[gnu::always_inline]] inline std::size_t convertBlock(__m512i block, const Kinds& kinds, __mmask64 wanted,
                                                       char16_t* units, std::size_t room) {
  if (isMalformed(block, kinds)) return malformed;
  const __mmask64 ascii = ~(kinds.continuing | kinds.two);
  const __mmask64 kept =
      (ascii | (kinds.two & ~kinds.three) << 1 | kinds.three << 2 | kinds.four << 3) & wanted;
  const Bits bits = bitsOf(block, kinds);
  const auto lower = static_cast<__mmask32>(kept), upper = static_cast<__mmask32>(kept >> unitWidth);
  const std::size_t count = storeUnits(units, unitsOfHalf<0>(bits, kinds), lower, room);
  if (upper == 0) return count;
  return count + storeUnits(units + count, unitsOfHalf<1>(bits, kinds), upper, room - count);
}

inline std::size_t utf16FromUTF8(const char* bytes, std::size_t count, char16_t* units, std::size_t room) {
  for (std::size_t at = 0; at <= count; at += step) {
    const __m512i block = blockAt(bytes, count, at);
    const __mmask64 wanted = firstBytes(count - at + lookBack) & allButLookBack;
    const __mmask64 continuing = continuationsIn(block), three = atLeast<0xE0>(block);
    const __mmask64 two = _mm512_movepi8_mask(block) & ~continuing;
    // Without sequences of three and four bytes, half of the work is not needed.
    const std::size_t written =
        three == 0 ? convertBlock(block, {continuing, two, 0, 0}, wanted, units, room)
                   : convertBlock(block, {continuing, two, three, atLeast<0xF0>(block)}, wanted, units, room);
    if (written == malformed) return wellFormedUTF8(bytes, count, at);
    units += written;
    room -= written;
  }
  return count;
}

}  // namespace
}  // namespace NSKernels
