#pragma once

#include <Foundation/Foundation.h>
#include <Security/SecDefaultStorage.h>
#include <Security/SecItem.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

/// Runs vectors/keychain.txt, which says how it is written, on stores that `makeStorage` makes empty.
class SecStorageConformance {
 public:
  using MakeStorage = std::function<std::shared_ptr<SecStorage>()>;

  static void expect(const MakeStorage& makeStorage) {
    std::ifstream table(VX_VECTORS "/keychain.txt");
    std::size_t steps = 0;
    std::string line, title;
    for (std::size_t number = 1; std::getline(table, line); ++number) {
      SCOPED_TRACE("keychain.txt:" + std::to_string(number) + ": " + title + "\n  " + line);
      if (line.empty() || line[0] == '#') continue;
      if (line[0] == '[') {
        title = line;
        secSetDefaultStorage(makeStorage());
      } else {
        expectStep(line);
        ++steps;
      }
    }
    secSetDefaultStorage(nullptr);
    EXPECT_GT(steps, 150u) << "the table was not found whole";
  }

 private:
  static void expectStep(const std::string& line) {
    const auto [question, answer] = cut(line, " -> ");
    const auto [operation, maps] = cut(question, " ");
    const auto [first, second] = cut(maps, " / ");
    const auto [status, expected] = cut(answer, " | ");
    RefPtr<NSDictionary> result;
    EXPECT_EQ(perform(operation, mapOf(first), mapOf(second), result), std::stol(status));
    const RefPtr<NSDictionary> wanted = expected.empty() ? nullptr : mapOf(expected);
    ASSERT_EQ(bool(result), bool(wanted));
    if (!result) return;
    EXPECT_TRUE(result->isEqual(wanted)) << *result->description();
  }

  static OSStatus perform(const std::string& operation, const RefPtr<NSDictionary>& first,
                          const RefPtr<NSDictionary>& second, RefPtr<NSDictionary>& result) {
    if (operation == "add") return SecItemAdd(first, &result);
    if (operation == "copy") return SecItemCopyMatching(first, &result);
    if (operation == "update") return SecItemUpdate(first, second);
    if (operation == "delete") return SecItemDelete(first);
    throw std::invalid_argument("no operation " + operation);
  }

  static RefPtr<NSDictionary> mapOf(const std::string& words) {
    if (words == "nil") return nullptr;
    const Ref<NSMutableDictionary> map = NSMutableDictionary::dictionary();
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
      const auto [name, value] = cut(word, "=");
      const auto [key, kind] = cut(name, ":");
      map->setObject(valueOf(kind.empty() ? kindOf(key) : kind, key == "class" ? classOf(value) : value),
                     keyOf(key));
    }
    return map;
  }

  static Ref<NSString> keyOf(const std::string& key) {
    static const std::map<std::string, Ref<NSString>> keys = {
        {"class", kSecClass},          {"account", kSecAttrAccount},
        {"label", kSecAttrLabel},      {"service", kSecAttrService},
        {"server", kSecAttrServer},    {"path", kSecAttrPath},
        {"port", kSecAttrPort},        {"protocol", kSecAttrProtocol},
        {"data", kSecValueData},       {"returnAttributes", kSecReturnAttributes},
        {"returnData", kSecReturnData}};
    const auto known = keys.find(key);
    return known == keys.end() ? text(key) : known->second;
  }

  static std::string classOf(const std::string& name) {
    if (name == "generic") return std::string(*kSecClassGenericPassword);
    if (name == "internet") return std::string(*kSecClassInternetPassword);
    return name;
  }

  static std::string kindOf(const std::string& key) {
    if (key == "port") return "number";
    if (key == "data") return "data";
    return key.rfind("return", 0) == 0 ? "flag" : "text";
  }

  static Ref<NSObject> valueOf(const std::string& kind, const std::string& value) {
    if (kind == "number") return NSNumber::numberWithInteger(std::stoll(value));
    if (kind == "flag") return NSNumber::numberWithBool(value == "1");
    if (kind == "text") return text(value);
    const std::string bytes = value[0] == '@' ? std::string(std::stoul(value.substr(1)), 'x') : plain(value);
    return NSData::dataWithBytes(bytes.data(), bytes.size());
  }

  /// A text between the code units that are written as such.
  static Ref<NSString> text(const std::string& value) {
    const auto [before, after] = cut(value, "%u");
    const auto head = static_cast<std::u16string>(*NSString::stringWithUTF8String(plain(before)));
    if (before.size() == value.size()) return NSString::stringWithCharacters(head);
    const auto unit = static_cast<char16_t>(std::stoul(after.substr(0, 4), nullptr, 16));
    return NSString::stringWithCharacters(head + unit + static_cast<std::u16string>(*text(after.substr(4))));
  }

  static std::string plain(const std::string& escaped) {
    std::string bytes;
    for (std::size_t index = 0; index < escaped.size(); ++index) {
      if (escaped[index] != '%') {
        bytes += escaped[index];
      } else {
        bytes += static_cast<char>(std::stoi(escaped.substr(index + 1, 2), nullptr, 16));
        index += 2;
      }
    }
    return bytes;
  }

  static std::pair<std::string, std::string> cut(const std::string& whole, const std::string& at) {
    const std::size_t place = whole.find(at);
    if (place == std::string::npos) return {whole, ""};
    return {whole.substr(0, place), whole.substr(place + at.size())};
  }
};
