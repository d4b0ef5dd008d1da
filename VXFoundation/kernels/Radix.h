#pragma once

#include <cstddef>

#include <VXFoundation/kernels/CodecKernels.h>

namespace VXKernels {

inline constexpr char _base64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
inline constexpr char _base64URLAlphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
inline constexpr char _base32Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";
inline constexpr char _base16Alphabet[] = "0123456789ABCDEF";

/// The padding character of base 64 and base 32 (RFC 4648, section 3.2).
inline constexpr char _padding = '=';

/// One notation of RFC 4648: a group of bytes is read as one number, most significant byte first,
/// and written in digits of `bits` bits each, most significant digit first.
struct Radix {
  std::size_t bits;
  std::size_t groupBytes;
  std::size_t groupDigits;
  const char* alphabet;
  bool eitherCase;  // the decoder also accepts lower-case letters
};

inline constexpr Radix base64{6, 3, 4, _base64Alphabet, false};
inline constexpr Radix base64URL{6, 3, 4, _base64URLAlphabet, false};
inline constexpr Radix base32{5, 5, 8, _base32Alphabet, false};
inline constexpr Radix base16{4, 1, 2, _base16Alphabet, true};

/// The member of a set of kernels that holds the kernels of a notation.
///@{
template <const Radix& radix>
inline constexpr RadixKernels CodecKernels::*kernelsOf = nullptr;
template <>
inline constexpr RadixKernels CodecKernels::*kernelsOf<base64> = &CodecKernels::base64;
template <>
inline constexpr RadixKernels CodecKernels::*kernelsOf<base64URL> = &CodecKernels::base64URL;
template <>
inline constexpr RadixKernels CodecKernels::*kernelsOf<base32> = &CodecKernels::base32;
template <>
inline constexpr RadixKernels CodecKernels::*kernelsOf<base16> = &CodecKernels::base16;
///@}

/// The value of every character; `notADigit` for those that are not digits.
struct DigitValues {
  unsigned char of[256];
};
inline constexpr unsigned char notADigit = 255;

constexpr DigitValues digitValues(const Radix& radix) {
  DigitValues values{};
  for (auto& value : values.of) value = notADigit;
  for (unsigned digit = 0; digit < 1u << radix.bits; ++digit) {
    const auto character = static_cast<unsigned char>(radix.alphabet[digit]);
    values.of[character] = static_cast<unsigned char>(digit);
    if (radix.eitherCase && character >= 'A') values.of[character | 0x20] = static_cast<unsigned char>(digit);
  }
  return values;
}

}  // namespace VXKernels
