#pragma once

// Each half of a vector takes sixteen digits from its bytes. The notations differ in how bytes are spread
// into digits and digits are turned into characters.
#include <VXFoundation/kernels/CodecKernels.h>
#include <VXFoundation/kernels/Radix.h>
#include <VXFoundation/kernels/avx2/Half.h>

namespace VXKernels {
namespace {

inline __m256i loadHalves(const void* low, const void* high) {
  const __m128i first = _mm_loadu_si128(static_cast<const __m128i*>(low));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(first),
                                 _mm_loadu_si128(static_cast<const __m128i*>(high)), 1);
}

/// Digit i lies in the 16 bits that begin with byte `5 * i / 8` of its group.
inline __m256i base32Digits(__m256i bytes) {
  const Half evenBytes{1, 0, 2, 1, 3, 2, 4, 3, 6, 5, 7, 6, 8, 7, 9, 8};
  const Half oddBytes{1, 0, 2, 1, 4, 3, 5, 4, 6, 5, 7, 6, 9, 8, 10, 9};
  const __m256i even = _mm256_mulhi_epu16(_mm256_shuffle_epi8(bytes, evenBytes.vector()),
                                          _mm256_set1_epi64x(0x0800'0200'0080'0020));
  const __m256i odd = _mm256_mulhi_epu16(_mm256_shuffle_epi8(bytes, oddBytes.vector()),
                                         _mm256_set1_epi64x(0x0100'0040'1000'0400));
  return _mm256_and_si256(
      _mm256_or_si256(_mm256_and_si256(even, _mm256_set1_epi16(31)), _mm256_slli_epi16(odd, 8)),
      _mm256_set1_epi8(31));
}

/// Makes the words ba and cb from three bytes a, b and c; multiplying shifts each digit to its byte.
inline __m256i base64Digits(__m256i bytes) {
  const Half words{1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10};
  const __m256i spread = _mm256_shuffle_epi8(bytes, words.vector());
  const __m256i even = _mm256_mulhi_epu16(spread, _mm256_set1_epi32(0x0400'0040));
  const __m256i odd = _mm256_mullo_epi16(spread, _mm256_set1_epi32(0x0100'0010));
  return _mm256_or_si256(_mm256_and_si256(even, _mm256_set1_epi16(0x003F)),
                         _mm256_and_si256(odd, _mm256_set1_epi16(0x3F00)));
}

inline __m256i base16Digits(__m256i bytes) {
  const Half twice{0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7};
  const __m256i spread = _mm256_shuffle_epi8(bytes, twice.vector());
  const __m256i high = _mm256_and_si256(_mm256_srli_epi16(spread, 4), _mm256_set1_epi16(0x000F));
  return _mm256_or_si256(high, _mm256_and_si256(spread, _mm256_set1_epi16(0x0F00)));
}

inline __m256i add(__m256i digits, __m256i where, int difference) {
  return _mm256_add_epi8(digits, _mm256_and_si256(where, _mm256_set1_epi8(static_cast<char>(difference))));
}

/// Character minus digit, which changes at 26, 52, 62 and 63. Capitals have a separate place; the others have
/// the place `digit - 51`, or 0 if that is negative.
inline constexpr std::size_t capitalsPlace = 13;

constexpr Half base64Differences(const Radix& radix) {
  Half differences{};
  for (std::size_t digit = 0; digit < 64; ++digit) {
    const std::size_t place = digit < 26 ? capitalsPlace : digit < 52 ? 0 : digit - 51;
    differences.at[place] =
        static_cast<unsigned char>(static_cast<std::size_t>(radix.alphabet[digit]) - digit);
  }
  return differences;
}

template <const Radix& radix>
__m256i charactersOf(__m256i bytes) {
  static_assert(radix.bits == 6);
  static constexpr Half differences = base64Differences(radix);
  const __m256i digits = base64Digits(bytes);
  const __m256i capitals = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), digits);
  const __m256i places = add(_mm256_subs_epu8(digits, _mm256_set1_epi8(51)), capitals, capitalsPlace);
  return _mm256_add_epi8(digits, _mm256_shuffle_epi8(differences.vector(), places));
}

template <>
inline __m256i charactersOf<base32>(__m256i bytes) {
  const __m256i digits = base32Digits(bytes);
  const __m256i numerals = _mm256_cmpgt_epi8(digits, _mm256_set1_epi8(25));
  return add(_mm256_add_epi8(digits, _mm256_set1_epi8('A')), numerals, '2' - 'A' - 26);
}

template <>
inline __m256i charactersOf<base16>(__m256i bytes) {
  const __m256i characters =
      _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(base16.alphabet)));
  return _mm256_shuffle_epi8(characters, base16Digits(bytes));
}

template <const Radix& radix>
void encode(const std::byte* bytes, std::size_t count, char* text) {
  constexpr std::size_t half = 2 * radix.bits, step = 2 * half;
  for (; count >= half + 16; count -= step, bytes += step, text += width) {
    const __m256i characters = charactersOf<radix>(loadHalves(bytes, bytes + half));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(text), characters);
  }
  (scalarKernels.*kernelsOf<radix>).encode(bytes, count, text);
}

}  // namespace
}  // namespace VXKernels
