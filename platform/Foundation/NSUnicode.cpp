#include <Foundation/NSUnicode.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

constexpr bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// Returns the scalar value of a sequence that is known to be well-formed.
char32_t decodedSequence(std::string_view sequence) {
  constexpr unsigned char leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  auto value = static_cast<char32_t>(static_cast<unsigned char>(sequence[0]) & leadBits[sequence.size()]);
  for (const char byte : sequence.substr(1)) value = value << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
  return value;
}

void appendUTF16(std::u16string& units, char32_t value) {
  if (value < 0x10000) {
    units.push_back(static_cast<char16_t>(value));
    return;
  }
  units.push_back(static_cast<char16_t>(0xD7C0 + (value >> 10)));
  units.push_back(static_cast<char16_t>(0xDC00 + (value & 0x3FF)));
}

void appendUTF8(std::string& bytes, char32_t value) {
  const auto continuation = [&](int shift) {
    bytes.push_back(static_cast<char>(0x80 | ((value >> shift) & 0x3F)));
  };
  if (value < 0x80) {
    bytes.push_back(static_cast<char>(value));
  } else if (value < 0x800) {
    bytes.push_back(static_cast<char>(0xC0 | (value >> 6)));
    continuation(0);
  } else if (value < 0x10000) {
    bytes.push_back(static_cast<char>(0xE0 | (value >> 12)));
    continuation(6);
    continuation(0);
  } else {
    bytes.push_back(static_cast<char>(0xF0 | (value >> 18)));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

}  // namespace

bool NSIsASCII(std::string_view text) noexcept {
  std::size_t i = 0;
  for (; i + sizeof(std::uint64_t) <= text.size(); i += sizeof(std::uint64_t)) {
    std::uint64_t word;
    std::memcpy(&word, text.data() + i, sizeof word);
    if (word & 0x8080808080808080U) return false;
  }
  return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool NSIsASCII(std::u16string_view text) noexcept {
  char16_t all = 0;
  for (const char16_t unit : text) all = static_cast<char16_t>(all | unit);
  return all < 0x80;
}

std::optional<std::u16string> NSUTF16FromUTF8(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = NSLengthOfUTF8Sequence(text);
    if (length == 0) return std::nullopt;
    appendUTF16(units, decodedSequence(text.substr(0, length)));
    text.remove_prefix(length);
  }
  return units;
}

std::optional<std::string> NSUTF8FromUTF16(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(3 * text.size());  // the most it may need: growing would leave a copy of a secret behind
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t value = text[i];
    if (isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
      value = 0x10000 + ((value & 0x3FF) << 10) + (text[++i] & 0x3FFU);
    } else if (isHighSurrogate(text[i]) || isLowSurrogate(text[i])) {
      return std::nullopt;
    }
    appendUTF8(bytes, value);
  }
  return bytes;
}
