#pragma once

#include <Security/SecMemory.h>

#include <span>
#include <string_view>
#include <vector>

/// Text in JSON (RFC 8259), in UTF-8, that may hold secrets: its memory is overwritten when it is freed,
/// which general libraries for JSON do not promise.
class JSONText {
 public:
  /// Returns whether a character is written as it is and not as an escape; quotation mark, backslash, control
  /// characters and unpaired surrogates are always escaped.
  using IsLiteral = bool (*)(char32_t point);

  /// Unless told otherwise, escapes what is not printable.
  JSONText();
  explicit JSONText(IsLiteral isLiteral) : isLiteral_(isLiteral) {}

  /// Appends text as it is.
  JSONText& operator<<(std::string_view json) {
    characters_.insert(characters_.end(), json.begin(), json.end());
    return *this;
  }
  /// Appends a string, with its quotation marks; bytes that are not UTF-8 become U+FFFD.
  ///@{
  void appendString(std::u16string_view units);
  void appendString(std::string_view utf8);
  ///@}

  std::span<const std::byte> bytes() const { return std::as_bytes(std::span(characters_)); }

 private:
  void appendPoint(char32_t point);
  void appendUnitEscape(char32_t unit);

  IsLiteral isLiteral_;
  std::vector<char, SecSecretAllocator<char>> characters_;
};
