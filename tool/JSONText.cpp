#include "tool/JSONText.h"

#include "tool/CodePoints.h"

JSONText::JSONText() : isLiteral_(isPrintable) {}

void JSONText::appendString(std::u16string_view units) {
  *this << "\"";
  forEachPoint(units, [this](char32_t point) { appendPoint(point); });
  *this << "\"";
}

void JSONText::appendString(std::string_view utf8) {
  *this << "\"";
  forEachPoint(
      utf8, [this](char32_t point) { appendPoint(point); }, [this](unsigned char) { appendPoint(0xFFFD); });
  *this << "\"";
}

void JSONText::appendUnitEscape(char32_t unit) {
  constexpr char digits[] = "0123456789abcdef";
  const char escape[] = {
      '\\', 'u', digits[unit >> 12 & 15], digits[unit >> 8 & 15], digits[unit >> 4 & 15], digits[unit & 15]};
  *this << std::string_view(escape, sizeof escape);
}

void JSONText::appendPoint(char32_t point) {
  constexpr std::string_view named = "\"\\\n\r\t", names = "\"\\nrt";
  const auto known = point < 0x80 ? named.find(static_cast<char>(point)) : named.npos;
  const bool isSurrogate = point >= 0xD800 && point < 0xE000;
  if (known != named.npos) {
    *this << "\\" << names.substr(known, 1);
  } else if (point >= 0x20 && !isSurrogate && isLiteral_(point)) {
    encodePoint(point, [this](char unit) { characters_.push_back(unit); });
  } else {
    appendUnitEscape(point);  // no character outside the basic plane is escaped
  }
}
