#pragma once

// Vectors of sixteen digits: one for base 32, two for base 16 and four for base 64, which the interleaving
// loads and stores of the instruction set separate.
#include <cstdint>

#include <VXFoundation/kernels/CodecKernels.h>
#include <VXFoundation/kernels/Radix.h>
#include <VXFoundation/kernels/neon/Vector.h>

namespace VXKernels {
namespace {

inline const std::uint8_t* raw(const void* from) { return static_cast<const std::uint8_t*>(from); }
inline std::uint8_t* raw(void* to) { return static_cast<std::uint8_t*>(to); }

/// Returns the values of characters, with one look-up for each 64 of the 128; 255 for those that are not
/// digits.
template <const Radix& radix>
uint8x16_t valuesOf(uint8x16_t characters) {
  static constexpr DigitValues values = digitValues(radix);
  const uint8x16x4_t lower = vld1q_u8_x4(values.of), upper = vld1q_u8_x4(values.of + 64);
  // Beyond its table, a look-up keeps the fallback: here 255, then what the first look-up found.
  const uint8x16_t found = vqtbx4q_u8(vdupq_n_u8(notADigit), lower, characters);
  return vqtbx4q_u8(found, upper, vsubq_u8(characters, vdupq_n_u8(64)));
}

inline bool allDigits(uint8x16_t values) { return vmaxvq_u8(values) != notADigit; }

/// Loads three vectors, of the first, second and third bytes of sixteen groups.
template <const Radix& radix>
void encodeBase64Block(const std::byte* bytes, char* text) {
  const uint8x16x4_t characters = vld1q_u8_x4(raw(radix.alphabet));
  const uint8x16x3_t group = vld3q_u8(raw(bytes));
  const uint8x16_t mask = vdupq_n_u8(63);
  uint8x16x4_t digits;
  digits.val[0] = vshrq_n_u8(group.val[0], 2);
  digits.val[1] = vandq_u8(vsliq_n_u8(vshrq_n_u8(group.val[1], 4), group.val[0], 4), mask);
  digits.val[2] = vandq_u8(vsliq_n_u8(vshrq_n_u8(group.val[2], 6), group.val[1], 2), mask);
  digits.val[3] = vandq_u8(group.val[2], mask);
  for (uint8x16_t& digit : digits.val) digit = vqtbl4q_u8(characters, digit);
  vst4q_u8(raw(text), digits);
}

template <const Radix& radix>
bool decodeBase64Block(const char* digits, std::byte* bytes) {
  uint8x16x4_t group = vld4q_u8(raw(digits));
  for (uint8x16_t& values : group.val) values = valuesOf<radix>(values);
  const uint8x16_t highest =
      vmaxq_u8(vmaxq_u8(group.val[0], group.val[1]), vmaxq_u8(group.val[2], group.val[3]));
  uint8x16x3_t joined;
  joined.val[0] = vsliq_n_u8(vshrq_n_u8(group.val[1], 4), group.val[0], 2);
  joined.val[1] = vsliq_n_u8(vshrq_n_u8(group.val[2], 2), group.val[1], 4);
  joined.val[2] = vsliq_n_u8(group.val[3], group.val[2], 6);
  vst3q_u8(raw(bytes), joined);
  return allDigits(highest);
}

/// Digit i lies in the 16 bits that begin with byte `5 * i / 8` of its group; a shift by its distance moves
/// it to the low end.
inline uint16x8_t base32Digits(uint8x16_t bytes, const std::uint8_t (&windows)[width]) {
  static constexpr std::int16_t distances[8] = {-11, -6, -9, -4, -7, -10, -5, -8};
  const uint16x8_t window = vreinterpretq_u16_u8(vqtbl1q_u8(bytes, vld1q_u8(windows)));
  return vandq_u16(vshlq_u16(window, vld1q_s16(distances)), vdupq_n_u16(31));
}

inline void encodeBase32Block(const std::byte* bytes, char* text) {
  static constexpr std::uint8_t first[width] = {1, 0, 1, 0, 2, 1, 2, 1, 3, 2, 4, 3, 4, 3, 5, 4};
  static constexpr std::uint8_t second[width] = {6, 5, 6, 5, 7, 6, 7, 6, 8, 7, 9, 8, 9, 8, 10, 9};
  const uint8x16x2_t characters = vld1q_u8_x2(raw(base32.alphabet));
  const uint8x16_t block = vld1q_u8(raw(bytes));
  const uint8x16_t digits =
      vcombine_u8(vmovn_u16(base32Digits(block, first)), vmovn_u16(base32Digits(block, second)));
  vst1q_u8(raw(text), vqtbl2q_u8(characters, digits));
}

/// Joins neighbouring digits until a lane of 64 bits holds the five bytes of a group, the last one lowest.
inline bool decodeBase32Block(const char* digits, std::byte* bytes) {
  static constexpr std::uint8_t order[width] = {4, 3, 2,   1,   0,   12,  11,  10,
                                                9, 8, 255, 255, 255, 255, 255, 255};
  const uint8x16_t values = valuesOf<base32>(vld1q_u8(raw(digits)));
  const uint16x8_t pairs = vreinterpretq_u16_u8(values);
  const uint32x4_t tens = vreinterpretq_u32_u16(
      vorrq_u16(vshlq_n_u16(vandq_u16(pairs, vdupq_n_u16(31)), 5), vshrq_n_u16(pairs, 8)));
  const uint64x2_t twenties = vreinterpretq_u64_u32(
      vorrq_u32(vshlq_n_u32(vandq_u32(tens, vdupq_n_u32(0x3FF)), 10), vshrq_n_u32(tens, 16)));
  const uint64x2_t forties = vorrq_u64(vshlq_n_u64(twenties, 20), vshrq_n_u64(twenties, 32));
  vst1q_u8(raw(bytes), vqtbl1q_u8(vreinterpretq_u8_u64(forties), vld1q_u8(order)));
  return allDigits(values);
}

inline void encodeBase16Block(const std::byte* bytes, char* text) {
  const uint8x16_t characters = vld1q_u8(raw(base16.alphabet));
  const uint8x16_t block = vld1q_u8(raw(bytes));
  uint8x16x2_t digits;
  digits.val[0] = vqtbl1q_u8(characters, vshrq_n_u8(block, 4));
  digits.val[1] = vqtbl1q_u8(characters, vandq_u8(block, vdupq_n_u8(15)));
  vst2q_u8(raw(text), digits);
}

inline bool decodeBase16Block(const char* digits, std::byte* bytes) {
  const uint8x16x2_t pairs = vld2q_u8(raw(digits));
  const uint8x16_t high = valuesOf<base16>(pairs.val[0]), low = valuesOf<base16>(pairs.val[1]);
  vst1q_u8(raw(bytes), vsliq_n_u8(low, high, 4));
  return allDigits(vmaxq_u8(high, low));
}

/// Encodes `step` bytes at a time while at least `room` bytes are left to read, the rest with the scalar
/// kernel.
template <const Radix& radix, std::size_t step, std::size_t room, auto encodeBlock>
void encode(const std::byte* bytes, std::size_t count, char* text) {
  constexpr std::size_t digits = step * 8 / radix.bits;
  for (; count >= room; count -= step, bytes += step, text += digits) encodeBlock(bytes, text);
  (scalarKernels.*kernelsOf<radix>).encode(bytes, count, text);
}

/// Decodes `digits` digits at a time while at least `room` digits are left, the rest with the scalar kernel.
template <const Radix& radix, std::size_t digits, std::size_t room, auto decodeBlock>
bool decode(const char* text, std::size_t count, std::byte* bytes) {
  constexpr std::size_t step = digits * radix.bits / 8;
  for (; count >= room; count -= digits, text += digits, bytes += step)
    if (!decodeBlock(text, bytes)) return false;
  return (scalarKernels.*kernelsOf<radix>).decode(text, count, bytes);
}

}  // namespace
}  // namespace VXKernels
