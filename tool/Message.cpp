#include "tool/Message.h"

#include <VXFoundation/VXFoundation.h>

std::string libraryText(const std::string& key, const char* table) {
  const auto bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  return std::string(*bundle->localizedStringForKey(NSString::stringWithUTF8String(key), "",
                                                    NSString::stringWithUTF8String(table)));
}

Message operator""_text(const char* key, std::size_t length) {
  Message message(std::string(key, length));
  message.isKey_ = true;
  return message;
}

Message sentences(const std::vector<Message>& messages) {
  std::string all;
  for (const Message& message : messages) {
    if (!all.empty()) all += ' ';
    all += message.text();
  }
  return all;
}

std::string Message::text() const {
  const std::string words = isKey_ ? libraryText(words_, "Tool") : words_;
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const auto value = static_cast<std::size_t>(i + 2 < words.size() ? words[i + 1] - '1' : -1);
    const bool isPlace = words[i] == '{' && value < values_.size() && words[i + 2] == '}';
    text += isPlace ? values_[value] : std::string(1, words[i]);
    if (isPlace) i += 2;
  }
  return text;
}
