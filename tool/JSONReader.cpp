#include "tool/JSONReader.h"

#include <Foundation/NSUnicode.h>

#include <algorithm>
#include <charconv>

#include "tool/CodePoints.h"
#include "tool/Failure.h"

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr int deepest = 100;
constexpr std::string_view space = " \t\r\n";

}  // namespace

void JSONReader::fail() const {
  throw Failure("the JSON is malformed at byte {1}"_text(std::to_string(length_ - rest_.size() + 1)));
}

char JSONReader::peek() {
  rest_.remove_prefix(std::min(rest_.find_first_not_of(space), rest_.size()));
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

bool JSONReader::skipAny(std::string_view characters) {
  const bool found = !rest_.empty() && characters.find(rest_.front()) != characters.npos;
  rest_.remove_prefix(found);
  return found;
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
  if (!skipAny("0123456789")) fail();
  while (skipAny("0123456789")) continue;
}

std::string_view JSONReader::number() {
  peek();
  const std::string_view start = rest_;
  skipAny("-");
  if (!skipAny("0")) digits();
  if (skipAny(".")) digits();
  if (skipAny("eE")) skipAny("+-"), digits();
  return start.substr(0, start.size() - rest_.size());
}

std::int64_t JSONReader::integer() {
  const std::string_view written = number();
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(written.begin(), written.end(), value);
  if (error != std::errc() || end != written.end()) fail();
  return value;
}

SecText JSONReader::units() {
  require('"');
  SecText units;
  while (!rest_.empty() && rest_.front() != '"') appendCharacter(units);
  require('"');
  return units;
}

SecretText JSONReader::utf8Of(std::u16string_view units) {
  SecretText text;
  text.reserve(3 * units.size());
  forEachPoint(units, [&](char32_t point) {
    const bool isUnpaired = point >> 11 == 0x1B;
    encodePoint(isUnpaired ? replacement : point, [&](char unit) { text << std::string_view(&unit, 1); });
  });
  return text;
}

void JSONReader::appendCharacter(SecText& units) {
  if (static_cast<unsigned char>(rest_.front()) < ' ') fail();
  if (rest_.front() == '\\') return appendEscape(units);
  const std::size_t length = std::max<std::size_t>(NSLengthOfUTF8Sequence(rest_), 1);
  const auto append = [&](char32_t point) {
    if (point > 0xFFFF) units.push_back(static_cast<char16_t>(0xD7C0 + (point >> 10)));
    units.push_back(static_cast<char16_t>(point > 0xFFFF ? 0xDC00 | (point & 0x3FF) : point));
  };
  forEachPoint(rest_.substr(0, length), append, [&](unsigned char) { append(replacement); });
  rest_.remove_prefix(length);
}

void JSONReader::appendEscape(SecText& units) {
  constexpr std::string_view names = "\"\\/bfnrt", characters = "\"\\/\b\f\n\r\t";
  rest_.remove_prefix(1);
  if (rest_.starts_with('u')) return units.push_back(unit());
  const std::size_t known = rest_.empty() ? names.npos : names.find(rest_.front());
  if (known == names.npos) fail();
  units.push_back(static_cast<char16_t>(characters[known]));
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
      units();
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
  if (rest_.find_first_not_of(space) != rest_.npos) fail();
}
