#pragma once

#include <arm_neon.h>

#include <cstddef>
#include <cstdint>

#include <Foundation/kernels/Orders.h>

/// Shared by the kernels of this set. All of it is local to each file: see UnicodeKernels.h.
namespace NSKernels {
namespace {

inline constexpr std::size_t width = 16;     // bytes of a vector
inline constexpr std::size_t unitWidth = 8;  // code units of a vector

inline uint8x16_t loadBytes(const char* from) {
  return vld1q_u8(reinterpret_cast<const std::uint8_t*>(from));
}
inline uint16x8_t loadUnits(const char16_t* from) {
  return vld1q_u16(reinterpret_cast<const std::uint16_t*>(from));
}

/// Returns the bytes, each `distance` lanes further on, with zeros at the beginning.
template <int distance>
uint8x16_t movedOn(uint8x16_t bytes) {
  return vextq_u8(vdupq_n_u8(0), bytes, 16 - distance);
}

/// Returns four bits for each byte of a mask: a number in which bits can be counted.
inline std::uint64_t fourBitsOf(uint8x16_t mask) {
  return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(mask), 4)), 0);
}

/// Returns one bit for each lane of a mask.
///@{
inline unsigned bitsOf(uint8x8_t mask) {
  static constexpr std::uint8_t weights[8] = {1, 2, 4, 8, 16, 32, 64, 128};
  return vaddv_u8(vand_u8(mask, vld1_u8(weights)));
}
inline unsigned bitsOf(uint16x8_t mask) { return bitsOf(vmovn_u16(mask)); }
///@}

inline std::size_t bitCount(unsigned bits) { return static_cast<std::size_t>(__builtin_popcount(bits)); }

/// Stores the bytes that the order moves to the front, and others behind them.
inline void storeOrdered(void* to, uint8x16_t bytes, const Orders& orders, unsigned bits) {
  vst1q_u8(static_cast<std::uint8_t*>(to), vqtbl1q_u8(bytes, vld1q_u8(orders.of[bits].at)));
}

}  // namespace
}  // namespace NSKernels
