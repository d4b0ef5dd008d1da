#pragma once

#include <immintrin.h>

#include <cstddef>

/// Shared by the radix kernels of this set. All of it is local to each file: see CodecKernels.h.
namespace VXKernels {
namespace {

inline constexpr std::size_t width = 32;

/// A look-up table or a pattern, the same in both halves of a vector. Each half holds sixteen digits, which
/// are `2 * bits` bytes and therefore whole groups in every notation.
struct alignas(16) Half {
  unsigned char at[16];
  __m256i vector() const {
    return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(at)));
  }
};

}  // namespace
}  // namespace VXKernels
