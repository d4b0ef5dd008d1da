#include <Security/DesktopStore/SecDesktopText.h>

#include <Security/SecFailure.h>

namespace {

constexpr char32_t malformed = 0xFFFFFFFF;

bool isSurrogate(char32_t character) { return character >= 0xD800 && character < 0xE000; }

/// What sd-bus accepts in a string.
bool isAccepted(char32_t character) {
  const bool isNoncharacter = (character & 0xFFFE) == 0xFFFE || (character >= 0xFDD0 && character <= 0xFDEF);
  return character != 0 && character < 0x110000 && !isSurrogate(character) && !isNoncharacter;
}

/// Removes the first character from UTF-16.
char32_t take(std::u16string_view& units) {
  const char32_t first = units.front();
  units.remove_prefix(1);
  if (first < 0xD800 || first >= 0xDC00 || units.empty()) return first;
  const char32_t second = units.front();
  if (second < 0xDC00 || second >= 0xE000) return first;
  units.remove_prefix(1);
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void append(SecDesktopText& utf8, char32_t character) {
  const auto put = [&](char32_t byte) { utf8.push_back(static_cast<char>(byte)); };
  const auto follow = [&](int shift) { put(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) return put(character);
  if (character < 0x800) return put(0xC0 | character >> 6), follow(0);
  if (character < 0x10000) return put(0xE0 | character >> 12), follow(6), follow(0);
  put(0xF0 | character >> 18), follow(12), follow(6), follow(0);
}

/// The number of bytes that a first byte announces; 0 for one that cannot be first.
std::size_t sizeOfSequence(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first < 0xE0) return 2;
  if (first >= 0xE0 && first < 0xF0) return 3;
  return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

/// Removes the first character from UTF-8; returns `malformed` if there is none.
char32_t take(std::string_view& utf8) {
  static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const auto first = static_cast<unsigned char>(utf8.front());
  const std::size_t size = sizeOfSequence(first);
  if (size == 0 || size > utf8.size()) return malformed;
  char32_t character = size == 1 ? first : first & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if ((byte & 0xC0) != 0x80) return malformed;
    character = character << 6 | (byte & 0x3F);
  }
  utf8.remove_prefix(size);
  return character < smallest[size] ? malformed : character;
}

}  // namespace

bool secIsDesktopText(std::string_view bytes) {
  while (!bytes.empty())
    if (!isAccepted(take(bytes))) return false;
  return true;
}

SecDesktopText secEncodeText(const SecText& text) {
  SecDesktopText utf8;
  utf8.reserve(text.size());
  // Qt takes it for a mark of the encoding and drops it.
  secRequire(text.empty() || text.front() != u'\uFEFF', errSecParam);
  for (std::u16string_view rest = text; !rest.empty();) {
    const char32_t character = take(rest);
    secRequire(isAccepted(character), errSecParam);
    append(utf8, character);
  }
  return utf8;
}

SecText secDecodeText(std::string_view utf8) {
  SecText text;
  text.reserve(utf8.size());
  while (!utf8.empty()) {
    const char32_t character = take(utf8);
    secRequire(isAccepted(character), errSecDecode);
    if (character >= 0x10000) text.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
    text.push_back(static_cast<char16_t>(character < 0x10000 ? character : 0xDC00 + (character & 0x3FF)));
  }
  return text;
}
