#pragma once

#include <immintrin.h>

#include <cstddef>

/// Shared by the kernels of this set. All of it is local to each file: see UnicodeKernels.h.
namespace NSKernels {
namespace {

inline constexpr std::size_t width = 64;      // bytes of a vector
inline constexpr std::size_t unitWidth = 32;  // code units of a vector

/// A look-up table or a pattern as wide as a vector.
struct alignas(width) Block {
  unsigned char at[width];
  __m512i vector() const { return _mm512_load_si512(at); }
};

/// Returns a vector of equal bytes or code units. It is loaded: making it from a number, as compilers do for
/// constants, takes longer than most operations on it.
///@{
template <unsigned char byte>
__m512i bytesOf() {
  static constexpr Block block = [] {
    Block all{};
    for (unsigned char& each : all.at) each = byte;
    return all;
  }();
  return block.vector();
}
template <unsigned unit>
__m512i unitsOf() {
  static constexpr Block block = [] {
    Block all{};
    for (std::size_t i = 0; i < width; ++i) all.at[i] = static_cast<unsigned char>(unit >> i % 2 * 8);
    return all;
  }();
  return block.vector();
}
///@}

/// Return the mask of the first `count` bytes or code units of a vector, at most all of them.
///@{
inline __mmask64 firstBytes(std::size_t count) {
  return _bzhi_u64(~0ull, static_cast<unsigned>(count < width ? count : width));
}
inline __mmask32 firstUnits(std::size_t count) {
  return _bzhi_u32(~0u, static_cast<unsigned>(count < unitWidth ? count : unitWidth));
}
///@}

inline std::size_t bitCount(__mmask64 mask) { return static_cast<std::size_t>(_mm_popcnt_u64(mask)); }

inline __m512i loadBytes(const char* bytes, std::size_t count) {
  return count >= width ? _mm512_loadu_si512(bytes) : _mm512_maskz_loadu_epi8(firstBytes(count), bytes);
}
inline __m512i loadUnits(const char16_t* units, std::size_t count) {
  return count >= unitWidth ? _mm512_loadu_si512(units) : _mm512_maskz_loadu_epi16(firstUnits(count), units);
}

}  // namespace
}  // namespace NSKernels
