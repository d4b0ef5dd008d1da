#pragma once

#include <Foundation/kernels/UnicodeKernels.h>

namespace NSKernels {
namespace {

constexpr bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

inline std::size_t unitsBefore(const char16_t* units, std::size_t count, char16_t unit) {
  std::size_t i = 0;
  while (i < count && units[i] != unit) ++i;
  return i;
}

/// Two code units of a pair have four bytes.
inline std::size_t utf8Length(const char16_t* units, std::size_t count) {
  std::size_t bytes = count;
  for (std::size_t i = 0; i < count; ++i)
    bytes += (units[i] >= 0x80) + (units[i] >= 0x800 && (units[i] & 0xF800) != 0xD800);
  return bytes;
}

inline char* appendUTF8(char* bytes, char32_t value) {
  const auto append = [&bytes](char32_t tag, char32_t bits) { *bytes++ = static_cast<char>(tag | bits); };
  const auto continuation = [&](int shift) { append(0x80, value >> shift & 0x3F); };
  if (value < 0x80) {
    append(0, value);
  } else if (value < 0x800) {
    append(0xC0, value >> 6);
    continuation(0);
  } else if (value < 0x10000) {
    append(0xE0, value >> 12);
    continuation(6);
    continuation(0);
  } else {
    append(0xF0, value >> 18);
    continuation(12);
    continuation(6);
    continuation(0);
  }
  return bytes;
}

inline std::size_t utf8FromUTF16(const char16_t* units, std::size_t count, char* bytes, std::size_t) {
  std::size_t i = 0;
  for (; i < count; ++i) {
    char32_t value = units[i];
    if (isHighSurrogate(units[i]) && i + 1 < count && isLowSurrogate(units[i + 1])) {
      value = 0x10000 + ((value & 0x3FF) << 10) + (units[++i] & 0x3FFU);
    } else if (isHighSurrogate(units[i]) || isLowSurrogate(units[i])) {
      break;
    }
    bytes = appendUTF8(bytes, value);
  }
  return i;
}

}  // namespace
}  // namespace NSKernels
