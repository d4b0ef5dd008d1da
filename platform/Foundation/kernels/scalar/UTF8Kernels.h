#pragma once

#include <string_view>

#include <Foundation/NSUnicode.h>
#include <Foundation/kernels/UnicodeKernels.h>

namespace NSKernels {
namespace {

template <class Unit>
std::size_t asciiPrefix(const Unit* units, std::size_t count) {
  std::size_t i = 0;
  while (i < count && static_cast<char16_t>(units[i]) < 0x80) ++i;
  return i;
}

/// Every character has one byte that does not continue a sequence; one above U+FFFF has two code units.
inline std::size_t utf16Length(const char* bytes, std::size_t count) {
  std::size_t units = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    units += ((byte & 0xC0) != 0x80) + (byte >= 0xF0);
  }
  return units;
}

/// Returns the scalar value of a sequence that is known to be well-formed.
inline char32_t valueOf(const char* sequence, std::size_t length) {
  constexpr unsigned char leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t value = static_cast<unsigned char>(sequence[0]) & leadBits[length];
  for (std::size_t i = 1; i < length; ++i)
    value = value << 6 | (static_cast<unsigned char>(sequence[i]) & 0x3FU);
  return value;
}

inline std::size_t utf16FromUTF8(const char* bytes, std::size_t count, char16_t* units, std::size_t) {
  std::size_t i = 0;
  while (i < count) {
    const std::size_t length = NSLengthOfUTF8Sequence({bytes + i, count - i});
    if (length == 0) break;
    const char32_t value = valueOf(bytes + i, length);
    if (value >= 0x10000) *units++ = static_cast<char16_t>(0xD7C0 + (value >> 10));
    *units++ = static_cast<char16_t>(value < 0x10000 ? value : 0xDC00 + (value & 0x3FF));
    i += length;
  }
  return i;
}

}  // namespace
}  // namespace NSKernels
