#pragma once

// Two look-ups, by the low and by the high half of a character, determine whether it is a digit, and a third
// one its value.
#include <VXFoundation/kernels/CodecKernels.h>
#include <VXFoundation/kernels/Radix.h>
#include <VXFoundation/kernels/avx2/Half.h>

namespace VXKernels {
namespace {

inline void storeHalves(std::byte* low, std::byte* high, __m256i halves) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(low), _mm256_castsi256_si128(halves));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(high), _mm256_extracti128_si256(halves, 1));
}

/// Character 16h + l is a digit if bit h is set in entry l: each row of sixteen characters has one bit.
constexpr Half digitsByLowHalf(const Radix& radix) {
  Half rows{};
  const DigitValues values = digitValues(radix);
  for (unsigned c = 0; c < 128; ++c)
    if (values.of[c] != notADigit)
      rows.at[c % 16] = static_cast<unsigned char>(rows.at[c % 16] | 1u << c / 16);
  return rows;
}

/// The only digit whose value minus character is not that of its row: "/" or "_", by the alphabet.
constexpr char irregularDigit(const Radix& radix) { return radix.bits == 6 ? radix.alphabet[63] : '\xFF'; }
/// The row that it uses instead, which has no digits.
inline constexpr int spareRow = 1;

/// Value minus character, by row.
constexpr Half differencesByRow(const Radix& radix) {
  Half differences{};
  const DigitValues values = digitValues(radix);
  for (unsigned c = 128; c-- > 0;)
    if (values.of[c] != notADigit)
      differences.at[c == static_cast<unsigned char>(irregularDigit(radix)) ? spareRow : c / 16] =
          static_cast<unsigned char>(values.of[c] - c);
  return differences;
}

template <const Radix& radix>
bool valuesOf(__m256i characters, __m256i& values) {
  static constexpr Half digits = digitsByLowHalf(radix), differences = differencesByRow(radix);
  const Half bits{1, 2, 4, 8, 16, 32, 64, 128};
  const __m256i rows = _mm256_and_si256(_mm256_srli_epi16(characters, 4), _mm256_set1_epi8(15));
  const __m256i known = _mm256_and_si256(_mm256_shuffle_epi8(digits.vector(), characters),
                                         _mm256_shuffle_epi8(bits.vector(), rows));
  constexpr char irregular = irregularDigit(radix), toSpareRow = spareRow - irregular / 16;
  const __m256i shifts = _mm256_and_si256(_mm256_cmpeq_epi8(characters, _mm256_set1_epi8(irregular)),
                                          _mm256_set1_epi8(toSpareRow));
  values =
      _mm256_add_epi8(characters, _mm256_shuffle_epi8(differences.vector(), _mm256_add_epi8(rows, shifts)));
  return _mm256_movemask_epi8(_mm256_cmpeq_epi8(known, _mm256_setzero_si256())) == 0;
}

/// Joins neighbouring digits until a lane of 16, 32 or 64 bits holds a group of whole bytes, and moves the
/// bytes to the front of each half.
template <const Radix& radix>
__m256i bytesOf(__m256i values) {
  constexpr int weight = 1 << radix.bits;
  constexpr unsigned char none = 128;
  constexpr Half order =
      radix.bits == 4   ? Half{0, 2, 4, 6, 8, 10, 12, 14, none, none, none, none, none, none, none, none}
      : radix.bits == 5 ? Half{4, 3, 2, 1, 0, 12, 11, 10, 9, 8, none, none, none, none, none, none}
                        : Half{2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, none, none, none, none};
  __m256i lanes = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x100 | weight));
  if constexpr (radix.bits > 4)
    lanes = _mm256_madd_epi16(lanes, _mm256_set1_epi32(0x10000 | weight * weight));
  if constexpr (radix.bits == 5)
    lanes = _mm256_or_si256(_mm256_slli_epi64(lanes, 20), _mm256_srli_epi64(lanes, 32));
  return _mm256_shuffle_epi8(lanes, order.vector());
}

template <const Radix& radix>
bool decode(const char* digits, std::size_t count, std::byte* bytes) {
  constexpr std::size_t half = 2 * radix.bits, step = 2 * half;
  for (; count * radix.bits / 8 >= half + 16; count -= width, digits += width, bytes += step) {
    __m256i values;
    if (!valuesOf<radix>(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(digits)), values)) return false;
    storeHalves(bytes, bytes + half, bytesOf<radix>(values));
  }
  return (scalarKernels.*kernelsOf<radix>).decode(digits, count, bytes);
}

}  // namespace
}  // namespace VXKernels
