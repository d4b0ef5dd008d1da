#pragma once

#include <Foundation/kernels/UnicodeKernels.h>
#include <Foundation/kernels/neon/Vector.h>

namespace NSKernels {
namespace {

inline std::size_t asciiBytes(const char* bytes, std::size_t count) {
  std::size_t i = 0;
  while (count - i >= width && vmaxvq_u8(loadBytes(bytes + i)) < 0x80) i += width;
  return i + scalarKernels.asciiBytes(bytes + i, count - i);
}

inline uint8x16_t atLeast(uint8x16_t bytes, std::uint8_t least) { return vcgeq_u8(bytes, vdupq_n_u8(least)); }

/// Whether bytes continue a sequence: 80 to BF.
inline uint8x16_t continuationsIn(uint8x16_t bytes) {
  return vcltq_s8(vreinterpretq_s8_u8(bytes), vdupq_n_s8(-64));
}

inline std::size_t utf16Length(const char* bytes, std::size_t count) {
  std::size_t units = 0;
  for (; count >= width; bytes += width, count -= width) {
    const uint8x16_t block = loadBytes(bytes);
    // A mask is -1 where it holds.
    const auto sum = vaddvq_s8(vreinterpretq_s8_u8(vsubq_u8(continuationsIn(block), atLeast(block, 0xF0))));
    units += width + static_cast<std::size_t>(sum);
  }
  return units + scalarKernels.utf16Length(bytes, count);
}

/// The kinds of bytes in a block that begins with a character: those that continue a sequence, and those that
/// begin one of two or more, of three or more, and of four bytes; and those before a sequence that goes on
/// after the block, with their number.
struct Kinds {
  uint8x16_t continuing, two, three, four, wanted;
  std::size_t used;
};

/// Whether a sequence goes on after the block: it has fewer bytes there than its lead byte announces.
inline bool goesOn(const Kinds& kinds) {
  const uint8x16_t inLast3 = vextq_u8(vdupq_n_u8(0), vdupq_n_u8(255), 3);
  const uint8x16_t inLast2 = vextq_u8(vdupq_n_u8(0), vdupq_n_u8(255), 2);
  const uint8x16_t inLast = vextq_u8(vdupq_n_u8(0), vdupq_n_u8(255), 1);
  const uint8x16_t cut = vorrq_u8(vorrq_u8(vandq_u8(kinds.two, inLast), vandq_u8(kinds.three, inLast2)),
                                  vandq_u8(kinds.four, inLast3));
  return vmaxvq_u8(cut) != 0;
}

inline Kinds kindsOf(uint8x16_t block) {
  static constexpr std::uint8_t places[width] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  Kinds kinds{continuationsIn(block), atLeast(block, 0xC0), atLeast(block, 0xE0),
              atLeast(block, 0xF0),   vdupq_n_u8(255),      width};
  if (!goesOn(kinds)) return kinds;
  kinds.used = static_cast<std::size_t>(63 - __builtin_clzll(fourBitsOf(kinds.two))) / 4;
  kinds.wanted = vcltq_u8(vld1q_u8(places), vdupq_n_u8(static_cast<std::uint8_t>(kinds.used)));
  return kinds;
}

/// Returns the bytes that begin no sequence, and those whose next byte belongs to an overlong sequence, a
/// surrogate or a value beyond U+10FFFF.
inline uint8x16_t wrongIn(uint8x16_t block, const Kinds& kinds) {
  const uint8x16_t next = vextq_u8(block, vdupq_n_u8(0), 1);
  const auto is = [block](std::uint8_t byte) { return vceqq_u8(block, vdupq_n_u8(byte)); };
  const uint8x16_t fromA0 = atLeast(next, 0xA0), from90 = atLeast(next, 0x90);
  const uint8x16_t low = vorrq_u8(vbicq_u8(is(0xE0), fromA0), vbicq_u8(is(0xF0), from90));
  const uint8x16_t high = vorrq_u8(vandq_u8(is(0xED), fromA0), vandq_u8(is(0xF4), from90));
  const uint8x16_t noLead = vorrq_u8(vbicq_u8(kinds.two, atLeast(block, 0xC2)), atLeast(block, 0xF5));
  return vorrq_u8(vorrq_u8(low, high), noLead);
}

inline bool isMalformed(uint8x16_t block, const Kinds& kinds) {
  const uint8x16_t expected =
      vorrq_u8(vorrq_u8(movedOn<1>(kinds.two), movedOn<2>(kinds.three)), movedOn<3>(kinds.four));
  const uint8x16_t wrong = vandq_u8(wrongIn(block, kinds), kinds.wanted);
  return vmaxvq_u8(vorrq_u8(veorq_u8(expected, kinds.continuing), wrong)) != 0;
}

/// The code units that the bytes of a block complete.
struct Units {
  uint16x8_t first, second;
};

inline uint16x8_t joined(uint8x8_t upper, uint8x8_t middle, uint8x8_t lower) {
  return vorrq_u16(vorrq_u16(vshlq_n_u16(vmovl_u8(upper), 12), vshll_n_u8(middle, 6)), vmovl_u8(lower));
}

inline uint16x8_t withPairs(uint16x8_t units, uint8x8_t isHigh, uint8x8_t isLow) {
  const auto wide = [](uint8x8_t mask) { return vreinterpretq_u16_s16(vmovl_s8(vreinterpret_s8_u8(mask))); };
  const uint16x8_t high = vaddq_u16(vshrq_n_u16(units, 4), vdupq_n_u16(0xD7C0));
  const uint16x8_t low = vorrq_u16(vandq_u16(units, vdupq_n_u16(0x03FF)), vdupq_n_u16(0xDC00));
  return vbslq_u16(wide(isHigh), high, vbslq_u16(wide(isLow), low, units));
}

inline Units unitsOf(uint8x16_t block, const Kinds& kinds) {
  const uint8x16_t lower = vbicq_u8(block, vandq_u8(atLeast(block, 0x80), vdupq_n_u8(0xC0)));
  const uint8x16_t middle = vandq_u8(movedOn<1>(lower), kinds.continuing);
  const uint8x16_t upper =
      vandq_u8(movedOn<2>(lower), vandq_u8(kinds.continuing, movedOn<1>(kinds.continuing)));
  const uint8x16_t high = movedOn<2>(kinds.four), low = movedOn<3>(kinds.four);
  return {withPairs(joined(vget_low_u8(upper), vget_low_u8(middle), vget_low_u8(lower)), vget_low_u8(high),
                    vget_low_u8(low)),
          withPairs(joined(vget_high_u8(upper), vget_high_u8(middle), vget_high_u8(lower)),
                    vget_high_u8(high), vget_high_u8(low))};
}

inline char16_t* storeUnits(char16_t* to, uint16x8_t units, uint8x8_t kept) {
  const unsigned bits = bitsOf(kept);
  storeOrdered(to, vreinterpretq_u8_u16(units), unitOrders, bits);
  return to + bitCount(bits);
}

inline std::size_t utf16FromUTF8(const char* bytes, std::size_t count, char16_t* units, std::size_t room) {
  std::size_t i = 0;
  char16_t* const end = units + room;
  while (count - i >= width && static_cast<std::size_t>(end - units) >= width) {
    const uint8x16_t block = loadBytes(bytes + i);
    const Kinds kinds = kindsOf(block);
    if (isMalformed(block, kinds)) break;
    const uint8x16_t ascii = vmvnq_u8(atLeast(block, 0x80));
    const uint8x16_t completed =
        vorrq_u8(vorrq_u8(movedOn<1>(vbicq_u8(kinds.two, kinds.three)), movedOn<2>(kinds.three)),
                 movedOn<3>(kinds.four));
    const uint8x16_t kept = vandq_u8(vorrq_u8(ascii, completed), kinds.wanted);
    const Units converted = unitsOf(block, kinds);
    units = storeUnits(units, converted.first, vget_low_u8(kept));
    units = storeUnits(units, converted.second, vget_high_u8(kept));
    i += kinds.used;
  }
  return i + scalarKernels.utf16FromUTF8(bytes + i, count - i, units, static_cast<std::size_t>(end - units));
}

}  // namespace
}  // namespace NSKernels
