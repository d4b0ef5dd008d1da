// Each 128-bit half holds sixteen digits, which are `2 * bits` bytes, so that it holds whole groups of
// every notation. Only spreading bytes into digits differs between them.
#include <immintrin.h>

#include "VXFoundation/kernels/CodecKernels.h"
#include "VXFoundation/kernels/Radix.h"

namespace VXKernels {
namespace {

constexpr std::size_t width = 32;

/// A look-up table or a pattern, the same in both halves.
struct alignas(16) Half {
  unsigned char at[16];
  __m256i vector() const {
    return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(at)));
  }
};

__m256i loadHalves(const void* low, const void* high) {
  const __m128i first = _mm_loadu_si128(static_cast<const __m128i*>(low));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(first),
                                 _mm_loadu_si128(static_cast<const __m128i*>(high)), 1);
}

void storeHalves(std::byte* low, std::byte* high, __m256i halves) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(low), _mm256_castsi256_si128(halves));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(high), _mm256_extracti128_si256(halves, 1));
}

/// Where each digit lies in the group of bytes: in the 16 bits that begin with byte `5 * i / 8`.
__m256i base32Digits(__m256i bytes) {
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

/// Of three bytes a, b, c, the words ba and cb; multiplying shifts each digit to its byte.
__m256i base64Digits(__m256i bytes) {
  const Half words{1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10};
  const __m256i spread = _mm256_shuffle_epi8(bytes, words.vector());
  const __m256i even = _mm256_mulhi_epu16(spread, _mm256_set1_epi32(0x0400'0040));
  const __m256i odd = _mm256_mullo_epi16(spread, _mm256_set1_epi32(0x0100'0010));
  return _mm256_or_si256(_mm256_and_si256(even, _mm256_set1_epi16(0x003F)),
                         _mm256_and_si256(odd, _mm256_set1_epi16(0x3F00)));
}

__m256i base16Digits(__m256i bytes) {
  const Half twice{0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7};
  const __m256i spread = _mm256_shuffle_epi8(bytes, twice.vector());
  const __m256i high = _mm256_and_si256(_mm256_srli_epi16(spread, 4), _mm256_set1_epi16(0x000F));
  return _mm256_or_si256(high, _mm256_and_si256(spread, _mm256_set1_epi16(0x0F00)));
}

__m256i add(__m256i digits, __m256i where, int difference) {
  return _mm256_add_epi8(digits, _mm256_and_si256(where, _mm256_set1_epi8(static_cast<char>(difference))));
}

template <const Radix& radix>
__m256i charactersOf(__m256i bytes);

/// Character less digit, which changes at 26, 52, 62 and 63. Capitals have a place of their own; the others
/// have the place `digit - 51`, or 0 below that.
constexpr std::size_t capitalsPlace = 13;

constexpr Half base64Differences() {
  Half differences{};
  for (std::size_t digit = 0; digit < 64; ++digit) {
    const std::size_t place = digit < 26 ? capitalsPlace : digit < 52 ? 0 : digit - 51;
    differences.at[place] =
        static_cast<unsigned char>(static_cast<std::size_t>(base64.alphabet[digit]) - digit);
  }
  return differences;
}

template <>
__m256i charactersOf<base64>(__m256i bytes) {
  static constexpr Half differences = base64Differences();
  const __m256i digits = base64Digits(bytes);
  const __m256i capitals = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), digits);
  const __m256i places = add(_mm256_subs_epu8(digits, _mm256_set1_epi8(51)), capitals, capitalsPlace);
  return _mm256_add_epi8(digits, _mm256_shuffle_epi8(differences.vector(), places));
}

template <>
__m256i charactersOf<base32>(__m256i bytes) {
  const __m256i digits = base32Digits(bytes);
  const __m256i numerals = _mm256_cmpgt_epi8(digits, _mm256_set1_epi8(25));
  return add(_mm256_add_epi8(digits, _mm256_set1_epi8('A')), numerals, '2' - 'A' - 26);
}

template <>
__m256i charactersOf<base16>(__m256i bytes) {
  const __m256i characters =
      _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(base16.alphabet)));
  return _mm256_shuffle_epi8(characters, base16Digits(bytes));
}

template <const Radix& radix>
void encode(const std::byte* bytes, std::size_t count, char* text, Encode& encodeTail) {
  constexpr std::size_t half = 2 * radix.bits, step = 2 * half;
  for (; count >= half + 16; count -= step, bytes += step, text += width) {
    const __m256i characters = charactersOf<radix>(loadHalves(bytes, bytes + half));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(text), characters);
  }
  encodeTail(bytes, count, text);
}

/// Character 16h + l is a digit when bit h is set in entry l: a row of sixteen characters has a bit.
constexpr Half digitsByLowHalf(const Radix& radix) {
  Half rows{};
  const DigitValues values = digitValues(radix);
  for (unsigned c = 0; c < 128; ++c)
    if (values.of[c] != notADigit)
      rows.at[c % 16] = static_cast<unsigned char>(rows.at[c % 16] | 1u << c / 16);
  return rows;
}

/// Value less character, by row. "/" is the one digit that differs from its row; row 1, which has no
/// digits, stands for it.
constexpr Half differencesByRow(const Radix& radix) {
  Half differences{};
  const DigitValues values = digitValues(radix);
  for (unsigned c = 128; c-- > 0;)
    if (values.of[c] != notADigit)
      differences.at[c == '/' ? 1 : c / 16] = static_cast<unsigned char>(values.of[c] - c);
  return differences;
}

template <const Radix& radix>
bool valuesOf(__m256i characters, __m256i& values) {
  static constexpr Half digits = digitsByLowHalf(radix), differences = differencesByRow(radix);
  const Half bits{1, 2, 4, 8, 16, 32, 64, 128};
  const __m256i rows = _mm256_and_si256(_mm256_srli_epi16(characters, 4), _mm256_set1_epi8(15));
  const __m256i known = _mm256_and_si256(_mm256_shuffle_epi8(digits.vector(), characters),
                                         _mm256_shuffle_epi8(bits.vector(), rows));
  const __m256i slashes = _mm256_cmpeq_epi8(characters, _mm256_set1_epi8(radix.bits == 6 ? '/' : -1));
  values =
      _mm256_add_epi8(characters, _mm256_shuffle_epi8(differences.vector(), _mm256_add_epi8(rows, slashes)));
  return _mm256_movemask_epi8(_mm256_cmpeq_epi8(known, _mm256_setzero_si256())) == 0;
}

/// Joins neighbouring digits until a lane of 16, 32 or 64 bits holds a group of whole bytes, and moves
/// these to the front of each half.
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
bool decode(const char* digits, std::size_t count, std::byte* bytes, Decode& decodeTail) {
  constexpr std::size_t half = 2 * radix.bits, step = 2 * half;
  for (; count * radix.bits / 8 >= half + 16; count -= width, digits += width, bytes += step) {
    __m256i values;
    if (!valuesOf<radix>(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(digits)), values)) return false;
    storeHalves(bytes, bytes + half, bytesOf<radix>(values));
  }
  return decodeTail(digits, count, bytes);
}

}  // namespace

namespace avx2 {

void base64Encode(const std::byte* bytes, std::size_t count, char* text) {
  encode<base64>(bytes, count, text, scalar::base64Encode);
}
void base32Encode(const std::byte* bytes, std::size_t count, char* text) {
  encode<base32>(bytes, count, text, scalar::base32Encode);
}
void base16Encode(const std::byte* bytes, std::size_t count, char* text) {
  encode<base16>(bytes, count, text, scalar::base16Encode);
}

bool base64Decode(const char* digits, std::size_t count, std::byte* bytes) {
  return decode<base64>(digits, count, bytes, scalar::base64Decode);
}
bool base32Decode(const char* digits, std::size_t count, std::byte* bytes) {
  return decode<base32>(digits, count, bytes, scalar::base32Decode);
}
bool base16Decode(const char* digits, std::size_t count, std::byte* bytes) {
  return decode<base16>(digits, count, bytes, scalar::base16Decode);
}

}  // namespace avx2
}  // namespace VXKernels
