#include <CoreServices/Internal/UTDynamicType.h>

#include <array>

#include <Foundation/NSUnicode.h>

namespace {

constexpr std::string_view conformsToKey = ":?c=";

constexpr std::string_view digits = "abcdefghkmnpqrstuvwxyz0123456789";
constexpr unsigned notADigit = 32;

constexpr std::array<unsigned char, 128> valuesOfDigits() {
  std::array<unsigned char, 128> values{};
  for (auto& value : values) value = notADigit;
  for (std::size_t i = 0; i < digits.size(); ++i)
    values[static_cast<unsigned char>(digits[i])] = static_cast<unsigned char>(i);
  return values;
}

constexpr auto values = valuesOfDigits();

unsigned valueOf(char digit) {
  const auto index = static_cast<unsigned char>(digit);
  return index < values.size() ? values[index] : notADigit;
}

// As in RFC 4648, section 6, with other digits and without padding.
std::string packed(std::string_view text) {
  std::string body;
  unsigned bits = 0, count = 0;
  for (const char c : text) {
    bits = bits << 8 | static_cast<unsigned char>(c);
    for (count += 8; count >= 5; count -= 5) body.push_back(digits[bits >> (count - 5) & 31]);
  }
  if (count > 0) body.push_back(digits[bits << (5 - count) & 31]);
  return body;
}

std::optional<std::string> unpacked(std::string_view body) {
  std::string text;
  unsigned bits = 0, count = 0;
  for (const char digit : body) {
    const unsigned value = valueOf(digit);
    if (value == notADigit) return std::nullopt;
    bits = bits << 5 | value;
    count += 5;
    if (count < 8) continue;
    count -= 8;
    text.push_back(static_cast<char>(bits >> count));
  }
  return text;
}

constexpr std::string_view hexadecimal = "0123456789ABCDEF";

bool isPlain(char c) { return c > ' ' && c < '\x7F' && c != '%' && c != ':' && c != '='; }

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (isPlain(c)) {
      result.push_back(c);
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    result.append({'%', hexadecimal[byte >> 4], hexadecimal[byte & 15]});
  }
  return result;
}

// Malformed escapes become anything that is escaped differently.
std::string unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%' || i + 2 >= text.size()) {
      result.push_back(text[i]);
      continue;
    }
    const std::size_t high = hexadecimal.find(text[i + 1]), low = hexadecimal.find(text[i + 2]);
    result.push_back(static_cast<char>(high << 4 | (low & 15)));
    i += 2;
  }
  return result;
}

std::optional<UTTagKind> kindOf(std::string_view pair) {
  if (pair.starts_with("e=")) return UTTagKind::extension;
  if (pair.starts_with("m=")) return UTTagKind::mimeType;
  return std::nullopt;
}

std::optional<UTDynamicType> parsed(std::string_view text) {
  const auto kind = kindOf(text);
  if (!kind) return std::nullopt;
  text.remove_prefix(2);
  const std::size_t end = text.find(conformsToKey);
  const auto tag = UTTagFrom(*kind, unescaped(text.substr(0, end)));
  if (!tag) return std::nullopt;
  const bool conforms = end != text.npos;
  return UTDynamicType{*tag, conforms ? unescaped(text.substr(end + conformsToKey.size())) : std::string()};
}

}  // namespace

bool UTHasDynamicForm(std::string_view identifier) {
  return identifier.starts_with(UTDynamicPrefix) && identifier.size() > UTDynamicPrefix.size();
}

std::string UTDynamicIdentifier(const UTDynamicType& type) {
  std::string text = type.tag.kind == UTTagKind::extension ? "e=" : "m=";
  text += escaped(type.tag.text);
  if (!type.conformsTo.empty()) text.append(conformsToKey).append(escaped(type.conformsTo));
  return std::string(UTDynamicPrefix).append(packed(text));
}

std::optional<UTDynamicType> UTDynamicTypeFrom(std::string_view identifier) {
  if (!UTHasDynamicForm(identifier)) return std::nullopt;
  const std::string_view body = identifier.substr(UTDynamicPrefix.size());
  // Most types of others are recognised by their first two bytes, without memory for the rest.
  if (const auto start = unpacked(body.substr(0, 4)); !start || !kindOf(*start)) return std::nullopt;
  const auto text = unpacked(body);
  auto type = text ? parsed(*text) : std::nullopt;
  if (!type || !NSIsUTF8(type->conformsTo) || UTDynamicIdentifier(*type) != identifier) return std::nullopt;
  return type;
}
