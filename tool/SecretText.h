#pragma once

#include <Security/SecMemory.h>

#include <span>
#include <string_view>
#include <vector>

/// Text that may hold secrets: its memory is overwritten when it is freed, which a std::string does not do.
class SecretText {
 public:
  SecretText() = default;
  explicit SecretText(std::string_view text) : characters_(text.begin(), text.end()) {}

  /// Makes room for as many characters.
  void reserve(std::size_t length) { characters_.reserve(length); }
  SecretText& operator<<(std::string_view text) {
    characters_.insert(characters_.end(), text.begin(), text.end());
    return *this;
  }

  /// The characters in place, valid until the text is changed or destroyed.
  ///@{
  std::string_view view() const { return {characters_.data(), characters_.size()}; }
  std::span<const std::byte> bytes() const { return std::as_bytes(std::span(characters_)); }
  ///@}

 private:
  std::vector<char, SecSecretAllocator<char>> characters_;
};

/// Returns bytes in place, as characters.
inline std::string_view textOf(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
