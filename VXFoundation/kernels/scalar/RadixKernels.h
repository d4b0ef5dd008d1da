#pragma once

#include <VXFoundation/kernels/Radix.h>

#include <cstdint>

#include <VXFoundation/kernels/CodecKernels.h>

namespace VXKernels {
namespace {

/// Encodes one group of 1 to `groupBytes` bytes; missing bytes count as zero, and digits that hold no bit of
/// a byte are written as padding.
template <const Radix& radix>
void encodeGroup(const std::byte* bytes, std::size_t count, char* text) {
  std::uint64_t group = 0;
  for (std::size_t i = 0; i < radix.groupBytes; ++i)
    group = group << 8 | (i < count ? std::to_integer<unsigned>(bytes[i]) : 0u);
  const std::size_t digits = (count * 8 + radix.bits - 1) / radix.bits;
  for (std::size_t i = 0; i < radix.groupDigits; ++i) {
    const std::uint64_t digit = group >> radix.bits * (radix.groupDigits - 1 - i) & ((1u << radix.bits) - 1);
    text[i] = i < digits ? radix.alphabet[digit] : _padding;
  }
}

template <const Radix& radix>
void encode(const std::byte* bytes, std::size_t count, char* text) {
  for (; count >= radix.groupBytes; count -= radix.groupBytes) {
    encodeGroup<radix>(bytes, radix.groupBytes, text);
    bytes += radix.groupBytes;
    text += radix.groupDigits;
  }
  if (count > 0) encodeGroup<radix>(bytes, count, text);
}

/// Decodes the whole bytes of one group of 1 to `groupDigits` digits; missing digits count as zero.
template <const Radix& radix>
bool decodeGroup(const char* digits, std::size_t count, std::byte* bytes) {
  static constexpr DigitValues values = digitValues(radix);
  std::uint64_t group = 0;
  bool allDigits = true;
  for (std::size_t i = 0; i < radix.groupDigits; ++i) {
    const unsigned value = i < count ? values.of[static_cast<unsigned char>(digits[i])] : 0u;
    allDigits &= value != notADigit;
    group = group << radix.bits | value;
  }
  for (std::size_t i = 0; i < count * radix.bits / 8; ++i)
    bytes[i] = static_cast<std::byte>(group >> 8 * (radix.groupBytes - 1 - i));
  return allDigits;
}

template <const Radix& radix>
bool decode(const char* digits, std::size_t count, std::byte* bytes) {
  for (; count >= radix.groupDigits; count -= radix.groupDigits) {
    if (!decodeGroup<radix>(digits, radix.groupDigits, bytes)) return false;
    digits += radix.groupDigits;
    bytes += radix.groupBytes;
  }
  return count == 0 || decodeGroup<radix>(digits, count, bytes);
}

}  // namespace
}  // namespace VXKernels
