#pragma once

#include <Security/SecDefaultStorage.h>
#include <Security/SecItem.h>
#include <Security/SecMemoryStorage.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Bytes.h"
#include "tests/support/Script.h"

/// A store that answers every transaction with one status, or runs out of memory, and counts them.
class AnsweringStorage : public SecStorage {
 public:
  explicit AnsweringStorage(OSStatus status) : status_(status) {}
  OSStatus transact(Access, const Work&) override {
    ++transactions;
    if (status_ == errSecAllocate) throw std::bad_alloc();
    return status_;
  }
  OSStatus copyInfo(SecStorageInfo&) override { return status_; }

  std::atomic<int> transactions = 0;

 private:
  OSStatus status_;
};

/// Tests on a memory store of their own, which see what is logged and asserted.
class KeychainTest : public testing::Test {
 protected:
  KeychainTest() {
    setenv("LC_ALL", "C", 1);
    secSetDefaultStorage(std::make_shared<SecMemoryStorage>());
    NSLogSetSink([this](std::string_view line) {
      const std::lock_guard lock(logging_);
      logged.emplace_back(line);
    });
  }
  ~KeychainTest() override {
    NSLogSetSink(nullptr);
    secSetDefaultStorage(nullptr);
  }

  std::shared_ptr<AnsweringStorage> answerAlways(OSStatus status) {
    const auto storage = std::make_shared<AnsweringStorage>(status);
    secSetDefaultStorage(storage);
    return storage;
  }

  std::vector<std::string> logged;

 private:
  std::mutex logging_;
};

/// An object for comparison: bytes as they are, of a map the keys and values in order.
inline std::string shown(const NSRefPtr<NSObject>& object) {
  if (!object) return "nil";
  if (const auto data = NSDynamicCast<NSData>(object)) return *bytesOf(data);
  if (const auto list = NSDynamicCast<NSArray>(object)) {
    std::string all;
    for (const NSRef<NSObject> each : *list) all += (all.empty() ? "[" : " [") + shown(each) + "]";
    return all;
  }
  const auto map = NSDynamicCast<NSDictionary>(object);
  if (!map) return std::string(*object->description());
  std::string all;
  map->enumerateKeysAndObjectsUsingBlock(
      [&](const NSRef<NSObject>& key, const NSRef<NSObject>& value, bool*) {
        if (!all.empty()) all += ' ';
        all.append(shown(key)).append(1, '=').append(shown(value));
      });
  return all;
}

/// A text as a script writes it: UTF-8 with "\xNN" for a byte, and "\uNNNN" for a code unit.
inline NSRef<NSString> writtenText(const std::string& written) {
  const auto [before, after] = cut(written, "\\u");
  auto units = static_cast<std::u16string>(*text(unescaped(before)));
  if (after.empty()) return NSString::stringWithCharacters(units);
  units.push_back(static_cast<char16_t>(std::stoul(after.substr(0, 4), nullptr, 16)));
  return NSString::stringWithCharacters(units + static_cast<std::u16string>(*writtenText(after.substr(4))));
}

inline NSRef<NSObject> writtenValue(const std::string& kind, const std::string& value) {
  if (kind == "number" || kind == "port") return NSNumber::numberWithInteger(std::stoll(value));
  if (kind == "matchLimit" && value != "all") return NSNumber::numberWithInteger(std::stoll(value));
  if (kind == "returnAttributes" || kind == "returnData" || kind == "matchExactly")
    return NSNumber::numberWithBool(value == "1");
  if (kind == "class") return writtenText(value + " password");
  if (kind != "data" && kind != "valueData") return writtenText(value);
  return dataOf(value[0] == '@' ? std::string(std::stoul(value.substr(1)), 'x') : unescaped(value));
}

/// The map that a script writes as key=value..., or nil. The class is "generic" or "internet"; @N is a secret
/// of N bytes; key:text=, key:number= and key:data= give a value of that kind in place of the key's own.
inline NSRefPtr<NSDictionary> writtenMap(const std::string& written) {
  if (written == "nil") return nullptr;
  const auto map = NSMutableDictionary::dictionary();
  std::istringstream words(written);
  for (std::string word; words >> word;) {
    const auto [name, value] = cut(word, "=");
    const auto [key, kind] = cut(name, ":");
    map->setObject(writtenValue(kind.empty() ? key : kind, value), text(key));
  }
  return map;
}
