#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What the tool says to people: a message, question or prompt. A literal such as "cannot read {1}"_text is
/// the key of its translations in the table Tool.strings of the library's bundle; called with values, it has
/// them in place of {1}, {2} and so on. Anything else is said as it is.
class Message {
 public:
  Message(std::string words) : words_(std::move(words)) {}
  Message(const char* words) : words_(words) {}

  /// Returns the message with these values, each of which is a string.
  Message operator()(const auto&... values) const {
    Message message(words_);
    message.isKey_ = isKey_;
    message.values_ = {std::string(values)...};
    return message;
  }

  /// Returns it in the user's language.
  std::string text() const;

  friend Message operator""_text(const char* key, std::size_t length);

 private:
  std::string words_;
  bool isKey_ = false;
  std::vector<std::string> values_;
};

Message operator""_text(const char* key, std::size_t length);

/// Returns several of them as one, with spaces between them.
Message sentences(const std::vector<Message>& messages);

/// Returns one of the library's own texts in the user's language.
std::string libraryText(const std::string& key, const char* table = nullptr);
