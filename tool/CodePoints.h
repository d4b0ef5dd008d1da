#pragma once

#include <Foundation/NSUnicode.h>

#include <string_view>

/// Calls `each` with every code point; unpaired surrogates are passed as they are.
inline void forEachPoint(std::u16string_view units, auto&& each) {
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t next = i + 1 < units.size() ? units[i + 1] : u'\0';
    const bool isPair = units[i] >> 10 == 0x36 && next >> 10 == 0x37;
    each(isPair ? 0x10000U + ((units[i] & 0x3FFU) << 10 | (next & 0x3FFU)) : char32_t{units[i]});
    i += isPair;
  }
}

/// Calls `each` with every code point, and `eachByte` with every byte that is not part of UTF-8.
inline void forEachPoint(std::string_view utf8, auto&& each, auto&& eachByte) {
  while (!utf8.empty()) {
    const std::size_t length = NSLengthOfUTF8Sequence(utf8);
    const auto lead = static_cast<unsigned char>(utf8.front());
    if (length == 0) eachByte(lead);
    char32_t point = length < 2 ? lead : lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i)
      point = point << 6 | (static_cast<unsigned char>(utf8[i]) & 0x3FU);
    if (length != 0) each(point);
    utf8.remove_prefix(length == 0 ? 1 : length);
  }
}

/// Appends a code point in UTF-8 with `append`, which takes characters.
inline void encodePoint(char32_t point, auto&& append) {
  const auto tail = [&](unsigned shift) { append(static_cast<char>(0x80U | ((point >> shift) & 0x3FU))); };
  if (point < 0x80) return append(static_cast<char>(point));
  if (point < 0x800) return append(static_cast<char>(0xC0U | point >> 6)), tail(0);
  if (point < 0x10000) return append(static_cast<char>(0xE0U | point >> 12)), tail(6), tail(0);
  append(static_cast<char>(0xF0U | point >> 18)), tail(12), tail(6), tail(0);
}

/// Returns whether a character may be shown to people as it is: it is not one that ends a line, controls a
/// terminal or turns the direction of what follows (Unicode 15.0: the categories Cc, Cs, Zl and Zp, the
/// property Bidi_Control and the deprecated formats after those).
constexpr bool isPrintable(char32_t point) {
  const auto isIn = [point](char32_t first, char32_t last) { return point >= first && point <= last; };
  return !isIn(0, 0x1F) && !isIn(0x7F, 0x9F) && point != 0x61C && !isIn(0x200E, 0x200F) &&
         !isIn(0x2028, 0x202E) && !isIn(0x2066, 0x206F) && !isIn(0xD800, 0xDFFF);
}
