#pragma once

#include <Foundation/kernels/UnicodeKernels.h>
#include <Foundation/kernels/neon/Vector.h>

namespace NSKernels {
namespace {

inline uint16x8_t atLeastUnit(uint16x8_t units, std::uint16_t least) {
  return vcgeq_u16(units, vdupq_n_u16(least));
}

/// Whether code units are surrogates whose first six bits are those of `first`.
inline uint16x8_t surrogatesFrom(uint16x8_t units, std::uint16_t first) {
  return vceqq_u16(vandq_u16(units, vdupq_n_u16(0xFC00)), vdupq_n_u16(first));
}

inline std::size_t asciiUnits(const char16_t* units, std::size_t count) {
  std::size_t i = 0;
  while (count - i >= unitWidth && vmaxvq_u16(loadUnits(units + i)) < 0x80) i += unitWidth;
  return i + scalarKernels.asciiUnits(units + i, count - i);
}

inline std::size_t unitsBefore(const char16_t* units, std::size_t count, char16_t unit) {
  std::size_t i = 0;
  while (count - i >= unitWidth && vmaxvq_u16(vceqq_u16(loadUnits(units + i), vdupq_n_u16(unit))) == 0)
    i += unitWidth;
  return i + scalarKernels.unitsBefore(units + i, count - i, unit);
}

inline std::size_t utf8Length(const char16_t* units, std::size_t count) {
  std::size_t bytes = 0;
  for (; count >= unitWidth; units += unitWidth, count -= unitWidth) {
    const uint16x8_t block = loadUnits(units);
    const uint16x8_t surrogates = vceqq_u16(vandq_u16(block, vdupq_n_u16(0xF800)), vdupq_n_u16(0xD800));
    const uint16x8_t three = vbicq_u16(atLeastUnit(block, 0x800), surrogates);
    // A mask is -1 where it holds.
    const auto sum = vaddvq_s16(vreinterpretq_s16_u16(vaddq_u16(atLeastUnit(block, 0x80), three)));
    bytes += unitWidth - static_cast<std::size_t>(sum);
  }
  return bytes + scalarKernels.utf8Length(units, count);
}

/// The kinds of code units in a block: those that have two or more bytes, those that have three, and the
/// halves of pairs, which have two of the four bytes each.
struct UnitKinds {
  uint16x8_t two, three, high, low;
};

/// Returns each code unit's predecessor, zero for that of the first.
inline uint16x8_t predecessors(uint16x8_t units) { return vextq_u16(vdupq_n_u16(0), units, 7); }

/// Returns the bits that the two bytes of each surrogate have in its place: the upper eleven of a pair, less
/// two, or the lower ten and those two.
inline uint16x8_t withPairsSplit(uint16x8_t units, const UnitKinds& kinds) {
  const uint16x8_t high = vshrq_n_u16(vsubq_u16(units, vdupq_n_u16(0xD7C0)), 2);
  const uint16x8_t before = vshlq_n_u16(predecessors(units), 10);
  const uint16x8_t low = vorrq_u16(vandq_u16(units, vdupq_n_u16(0x03FF)), before);
  return vbslq_u16(kinds.high, high, vbslq_u16(kinds.low, low, units));
}

/// Returns the last two bytes of each code unit, with that of ASCII in the upper one.
inline uint16x8_t lastBytesOf(uint16x8_t units, const UnitKinds& kinds) {
  const uint16x8_t following = vorrq_u16(kinds.three, kinds.low);
  const uint16x8_t tags = vorrq_u16(vbslq_u16(following, vdupq_n_u16(0x8080), vdupq_n_u16(0x80C0)),
                                    vandq_u16(kinds.high, vdupq_n_u16(0x80F0)));
  const uint16x8_t last = vshlq_n_u16(units, 8);
  const uint16x8_t bits = vbslq_u16(vdupq_n_u16(0xFF00), last, vshrq_n_u16(units, 6));
  return vbslq_u16(kinds.two, vorrq_u16(vandq_u16(bits, vdupq_n_u16(0x3F3F)), tags), last);
}

/// Stores code units of up to two bytes, two to a lane of which the last ones count.
inline char* storeShort(char* to, uint16x8_t lastBytes, const UnitKinds& kinds) {
  const unsigned bits = bitsOf(kinds.two);
  storeOrdered(to, vreinterpretq_u8_u16(lastBytes), shortOrders, bits);
  return to + unitWidth + bitCount(bits);
}

/// Stores code units of any length, four bytes to a lane of which the last ones count.
inline char* storeLong(char* to, uint16x8_t units, uint16x8_t lastBytes, const UnitKinds& kinds) {
  const uint16x8_t first =
      vorrq_u16(vandq_u16(vshrq_n_u16(units, 4), vdupq_n_u16(0x0F00)), vdupq_n_u16(0xE000));
  const unsigned two = bitsOf(kinds.two), three = bitsOf(kinds.three);
  const auto storeFour = [&to](uint16x8_t bytes, unsigned bits) {
    storeOrdered(to, vreinterpretq_u8_u16(bytes), longOrders, bits);
    to += 4 + bitCount(bits);
  };
  storeFour(vzip1q_u16(first, lastBytes), (two & 15) | (three & 15) << 4);
  storeFour(vzip2q_u16(first, lastBytes), two >> 4 | (three & 0xF0));
  return to;
}

inline std::size_t utf8FromUTF16(const char16_t* units, std::size_t count, char* bytes, std::size_t room) {
  std::size_t i = 0;
  char* const end = bytes + room;
  while (count - i >= unitWidth && static_cast<std::size_t>(end - bytes) >= 4 * unitWidth) {
    uint16x8_t block = loadUnits(units + i);
    const std::uint16_t greatest = vmaxvq_u16(block);
    UnitKinds kinds{atLeastUnit(block, 0x80), atLeastUnit(block, 0x800), vdupq_n_u16(0), vdupq_n_u16(0)};
    std::size_t used = unitWidth;
    if (greatest < 0x80) {
      vst1_u8(reinterpret_cast<std::uint8_t*>(bytes), vmovn_u16(block));
      bytes += unitWidth;
    } else if (greatest < 0x800) {
      bytes = storeShort(bytes, lastBytesOf(block, kinds), kinds);
    } else {
      kinds.high = surrogatesFrom(block, 0xD800);
      kinds.low = surrogatesFrom(block, 0xDC00);
      if (vmaxvq_u16(veorq_u16(predecessors(kinds.high), kinds.low)) != 0) break;
      // A pair that goes on after the block is left to the next one.
      if (vgetq_lane_u16(kinds.high, 7) != 0) --used;
      kinds.three = vbicq_u16(kinds.three, vorrq_u16(kinds.high, kinds.low));
      block = withPairsSplit(block, kinds);
      bytes = storeLong(bytes, block, lastBytesOf(block, kinds), kinds) - (used < unitWidth ? 2 : 0);
    }
    i += used;
  }
  return i + scalarKernels.utf8FromUTF16(units + i, count - i, bytes, static_cast<std::size_t>(end - bytes));
}

}  // namespace
}  // namespace NSKernels
