#pragma once

#include <immintrin.h>

#include <VXFoundation/kernels/Radix.h>

/// Shared by the kernels of this set. All of it is local to each file: see CodecKernels.h.
namespace VXKernels {
namespace {

inline constexpr std::size_t width = 64;

/// A look-up table or a pattern as wide as a vector.
struct alignas(width) Block {
  unsigned char at[width];
  __m512i vector() const { return _mm512_load_si512(at); }
};

/// Returns the mask of the first `count` bytes of a vector, at most all of them.
inline __mmask64 firstBytes(std::size_t count) {
  return _bzhi_u64(~0ull, static_cast<unsigned>(count < width ? count : width));
}

/// Returns the alphabet, repeated: a look-up takes six bits, the upper of which may belong to the previous
/// digit.
constexpr Block digitCharacters(const Radix& radix) {
  Block characters{};
  for (std::size_t i = 0; i < width; ++i)
    characters.at[i] = static_cast<unsigned char>(radix.alphabet[i % (1u << radix.bits)]);
  return characters;
}

/// Returns one half of the values of the 128 characters; those that are not digits have the top bit set.
constexpr Block valuesFrom(const Radix& radix, std::size_t first) {
  Block half{};
  const DigitValues values = digitValues(radix);
  for (std::size_t i = 0; i < width; ++i) half.at[i] = values.of[first + i];
  return half;
}

/// Returns the values of characters by their low seven bits; the caller must still check the eighth.
template <const Radix& radix>
__m512i valuesOf(__m512i characters) {
  static constexpr Block lower = valuesFrom(radix, 0), upper = valuesFrom(radix, width);
  return _mm512_permutex2var_epi8(lower.vector(), characters, upper.vector());
}

}  // namespace
}  // namespace VXKernels
