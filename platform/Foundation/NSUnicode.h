#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <Foundation/NSExport.h>

/// @file
/// Strict conversions between UTF-8 and 16-bit code units (RFC 3629, RFC 2781): malformed input is reported,
/// never repaired. Pure functions, for any number of threads.

/// Returns the length of the well-formed UTF-8 sequence at the start of `text`, 1 to 4, or 0 if there is
/// none: an overlong form, a surrogate, a value above U+10FFFF, a truncated sequence, a stray byte.
constexpr std::size_t NSLengthOfUTF8Sequence(std::string_view text) {
  const auto byte = [text](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  const auto continues = [byte](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
  const unsigned lead = byte(0);
  if (text.empty()) return 0;
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4 || !continues(1)) return 0;
  if (lead < 0xE0) return 2;
  if (!continues(2)) return 0;
  if (lead < 0xF0) {
    const bool overlong = lead == 0xE0 && byte(1) < 0xA0;
    const bool surrogate = lead == 0xED && byte(1) >= 0xA0;
    return overlong || surrogate ? 0 : 3;
  }
  const bool overlong = lead == 0xF0 && byte(1) < 0x90;
  const bool beyond = lead == 0xF4 && byte(1) >= 0x90;
  return overlong || beyond || !continues(3) ? 0 : 4;
}

/// Whether all bytes are well-formed UTF-8; true for no bytes.
constexpr bool NSIsUTF8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = NSLengthOfUTF8Sequence(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

/// Whether all bytes, or all code units, are below 128.
///@{
NS_EXPORT bool NSIsASCII(std::string_view text) noexcept;
NS_EXPORT bool NSIsASCII(std::u16string_view text) noexcept;
///@}

/// Returns std::nullopt for malformed UTF-8.
NS_EXPORT std::optional<std::u16string> NSUTF16FromUTF8(std::string_view text);
/// Returns std::nullopt if a surrogate is unpaired.
NS_EXPORT std::optional<std::string> NSUTF8FromUTF16(std::u16string_view text);
