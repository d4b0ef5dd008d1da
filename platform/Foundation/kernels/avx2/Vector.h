#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include <Foundation/kernels/Orders.h>

/// Shared by the kernels of this set. All of it is local to each file: see UnicodeKernels.h.
namespace NSKernels {
namespace {

inline constexpr std::size_t width = 32;      // bytes of a vector
inline constexpr std::size_t unitWidth = 16;  // code units of a vector

inline __m256i load(const void* from) { return _mm256_loadu_si256(static_cast<const __m256i*>(from)); }
inline void store(void* to, __m256i vector) { _mm256_storeu_si256(static_cast<__m256i*>(to), vector); }

/// Returns the top bits of all bytes.
inline std::uint32_t bitsOf(__m256i bytes) { return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes)); }
inline std::size_t bitCount(std::uint32_t bits) { return static_cast<std::size_t>(_mm_popcnt_u32(bits)); }

inline __m256i eachByte(int value) { return _mm256_set1_epi8(static_cast<char>(value)); }
inline __m256i eachUnit(int value) { return _mm256_set1_epi16(static_cast<short>(value)); }

/// Returns the bytes, each `distance` lanes further on, with zeros at the beginning.
template <int distance>
__m256i movedOn(__m256i bytes) {
  return _mm256_alignr_epi8(bytes, _mm256_permute2x128_si256(bytes, bytes, 0x08), 16 - distance);
}

/// Stores the bytes of one half of a vector that the order moves to the front, and others behind them.
inline void storeHalf(void* to, __m256i vector, unsigned half, const Orders& orders, std::uint32_t bits) {
  const __m128i bytes = half == 0 ? _mm256_castsi256_si128(vector) : _mm256_extracti128_si256(vector, 1);
  const __m128i order = _mm_load_si128(reinterpret_cast<const __m128i*>(orders.of[bits & 255].at));
  _mm_storeu_si128(static_cast<__m128i*>(to), _mm_shuffle_epi8(bytes, order));
}

}  // namespace
}  // namespace NSKernels
