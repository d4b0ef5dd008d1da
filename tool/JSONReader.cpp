#include "tool/JSONReader.h"

#include <Foundation/NSUnicode.h>

#include <algorithm>

#include "tool/CodePoints.h"
#include "tool/Failure.h"

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr int deepest = 100;

[[noreturn]] void fail() { throw Failure("the JSON is malformed"); }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

void append(SecretText& text, char32_t point) {
  encodePoint(point, [&](char unit) { text << std::string_view(&unit, 1); });
}

}  // namespace

char JSONReader::peek() {
  rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
  if (rest_.empty()) fail();
  return rest_.front();
}

bool JSONReader::take(char expected) {
  if (peek() != expected) return false;
  rest_.remove_prefix(1);
  return true;
}

void JSONReader::require(char expected) {
  if (!take(expected)) fail();
}

void JSONReader::enter() {
  if (++depth_ > deepest) fail();
}

JSONReader::Type JSONReader::type() {
  switch (peek()) {
    case '{':
      return Type::object;
    case '[':
      return Type::array;
    case '"':
      return Type::string;
    case 't':
    case 'f':
      return Type::boolean;
    case 'n':
      return Type::null;
    default:
      return Type::number;
  }
}

void JSONReader::word(std::string_view expected) {
  if (!rest_.starts_with(expected)) fail();
  rest_.remove_prefix(expected.size());
}

void JSONReader::digits() {
  if (rest_.empty() || !isDigit(rest_.front())) fail();
  rest_.remove_prefix(std::min(rest_.find_first_not_of("0123456789"), rest_.size()));
}

std::string_view JSONReader::number() {
  peek();
  const std::string_view start = rest_;
  const auto skipAny = [this](std::string_view characters) {
    const bool found = !rest_.empty() && characters.find(rest_.front()) != characters.npos;
    rest_.remove_prefix(found);
    return found;
  };
  skipAny("-");
  if (!skipAny("0")) digits();
  if (skipAny(".")) digits();
  if (skipAny("eE")) skipAny("+-"), digits();
  return start.substr(0, start.size() - rest_.size());
}

SecretText JSONReader::string() {
  require('"');
  SecretText text;
  while (!rest_.empty() && rest_.front() != '"') appendCharacter(text);
  require('"');
  return text;
}

void JSONReader::appendCharacter(SecretText& text) {
  if (static_cast<unsigned char>(rest_.front()) < ' ') fail();
  if (rest_.front() == '\\') return appendEscape(text);
  const std::size_t length = NSLengthOfUTF8Sequence(rest_);
  if (length == 0)
    append(text, replacement);
  else
    text << rest_.substr(0, length);
  rest_.remove_prefix(std::max<std::size_t>(length, 1));
}

void JSONReader::appendEscape(SecretText& text) {
  constexpr std::string_view names = "\"\\/bfnrt", characters = "\"\\/\b\f\n\r\t";
  rest_.remove_prefix(1);
  if (rest_.starts_with('u')) {
    const char16_t lead = unit();
    const bool isLead = lead >> 10 == 0x36, isTrail = lead >> 10 == 0x37;
    if (!isLead && !isTrail) return append(text, lead);
    const std::string_view after = rest_;
    const char16_t trail = isLead && rest_.starts_with("\\u") ? (rest_.remove_prefix(1), unit()) : u'\0';
    if (trail >> 10 == 0x37) return append(text, 0x10000U + ((lead & 0x3FFU) << 10 | (trail & 0x3FFU)));
    rest_ = after;
    return append(text, replacement);
  }
  const std::size_t known = rest_.empty() ? names.npos : names.find(rest_.front());
  if (known == names.npos) fail();
  text << characters.substr(known, 1);
  rest_.remove_prefix(1);
}

/// Reads "u" and four hexadecimal digits.
char16_t JSONReader::unit() {
  constexpr std::string_view lower = "0123456789abcdef", upper = "0123456789ABCDEF";
  if (rest_.size() < 5) fail();
  unsigned unit = 0;
  for (const char digit : rest_.substr(1, 4)) {
    const std::size_t value = std::min(lower.find(digit), upper.find(digit));
    if (value == lower.npos) fail();
    unit = unit << 4 | static_cast<unsigned>(value);
  }
  rest_.remove_prefix(5);
  return static_cast<char16_t>(unit);
}

void JSONReader::skip() {
  switch (type()) {
    case Type::object:
      return forEachMember([this](std::string_view) { skip(); });
    case Type::array:
      return forEachElement([this] { skip(); });
    case Type::string:
      string();
      return;
    case Type::number:
      number();
      return;
    case Type::boolean:
      return word(rest_.front() == 't' ? "true" : "false");
    case Type::null:
      return word("null");
  }
}

void JSONReader::end() {
  if (rest_.find_first_not_of(" \t\r\n") != rest_.npos) fail();
}
