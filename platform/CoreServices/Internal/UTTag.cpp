#include <CoreServices/Internal/UTTag.h>

#include <algorithm>

namespace {

char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// RFC 2045, section 5.1: parameters follow a semicolon, with optional space.
std::string_view withoutParameters(std::string_view mimeType) {
  constexpr std::string_view space = " \t\r\n";
  mimeType = mimeType.substr(0, mimeType.find(';'));
  mimeType.remove_prefix(std::min(mimeType.find_first_not_of(space), mimeType.size()));
  return mimeType.substr(0, mimeType.find_last_not_of(space) + 1);
}

}  // namespace

std::optional<UTTagKind> UTTagKindOfClass(const NSString& tagClass) {
  const auto name = tagClass.UTF8String();
  if (name == UTExtensionClassName) return UTTagKind::extension;
  if (name == UTMIMETypeClassName) return UTTagKind::mimeType;
  return std::nullopt;
}

std::optional<UTTag> UTTagFrom(UTTagKind kind, std::string_view utf8) {
  if (kind == UTTagKind::mimeType) utf8 = withoutParameters(utf8);
  if (utf8.empty() || !NSIsUTF8(utf8)) return std::nullopt;
  return UTTag{kind, UTLowerCase(utf8)};
}

std::optional<UTTag> UTTagFrom(UTTagKind kind, const NSString& text) {
  const auto utf8 = text.UTF8String();
  return utf8 ? UTTagFrom(kind, *utf8) : std::nullopt;
}

std::string UTLowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), lowerCase);
  return lower;
}
