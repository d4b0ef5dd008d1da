#include "tool/Printable.h"

#include <cstdio>

#include "tool/CodePoints.h"

namespace {

void appendEscape(std::string& text, char32_t point) {
  char escape[16];
  const int length = std::snprintf(escape, sizeof escape, "\\u{%x}", static_cast<unsigned>(point));
  text.append(escape, static_cast<std::size_t>(length));
}

/// Appends characters one by one, and notices where a name has what looks like an escape.
struct Appender {
  std::string text = {};

  void operator()(char32_t point) {
    if (point == '{' && text.ends_with("\\u")) text.replace(text.size() - 2, 1, "\\u{5c}");
    if (!isPrintable(point)) return appendEscape(text, point);
    encodePoint(point, [this](char unit) { text += unit; });
  }
};

}  // namespace

std::string printable(std::u16string_view units) {
  Appender appender;
  forEachPoint(units, appender);
  return appender.text;
}

std::string printable(std::string_view utf8) {
  Appender appender;
  forEachPoint(utf8, appender, [&](unsigned char byte) { appendEscape(appender.text, byte); });
  return appender.text;
}
