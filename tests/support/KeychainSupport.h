#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSLog.h>
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
#include "tests/support/Support.h"
#include "tests/support/Vectors.h"

/// A store that returns one status from every transaction, or runs out of memory, and counts transactions.
class StatusStorage : public SecStorage {
 public:
  explicit StatusStorage(OSStatus status) : status_(status) {}
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

/// Tests with a new store in memory, which record what is logged.
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

  std::shared_ptr<StatusStorage> returnAlways(OSStatus status) {
    const auto storage = std::make_shared<StatusStorage>(status);
    secSetDefaultStorage(storage);
    return storage;
  }

  std::vector<std::string> logged;

 private:
  std::mutex logging_;
};

/// Returns an object as a string for comparison: bytes unchanged, the keys and values of a dictionary in
/// order.
inline std::string shown(const NSRefPtr<NSObject>& object) {
  if (!object) return "nil";
  if (const auto data = NSDynamicCast<NSData>(object)) return *bytesOf(data);
  if (const auto array = NSDynamicCast<NSArray>(object)) {
    std::string all;
    for (const NSRef<NSObject> each : *array) all += (all.empty() ? "[" : " [") + shown(each) + "]";
    return all;
  }
  const auto dictionary = NSDynamicCast<NSDictionary>(object);
  if (!dictionary) return std::string(*object->description());
  std::string all;
  dictionary->enumerateKeysAndObjectsUsingBlock(
      [&](const NSRef<NSObject>& key, const NSRef<NSObject>& value, bool*) {
        if (!all.empty()) all += ' ';
        all.append(shown(key)).append(1, '=').append(shown(value));
      });
  return all;
}

/// Returns the string that a script writes as UTF-8 with "\xNN" for a byte and "\uNNNN" for a code unit.
inline NSRef<NSString> writtenText(const std::string& written) {
  const auto [before, after] = cut(written, "\\u");
  auto units = static_cast<std::u16string>(*text(unescaped(before)));
  if (after.empty()) return NSString::stringWithCharacters(units);
  units.push_back(static_cast<char16_t>(std::stoul(after.substr(0, 4), nullptr, 16)));
  return NSString::stringWithCharacters(units + static_cast<std::u16string>(*writtenText(after.substr(4))));
}

inline NSRef<NSObject> writtenValue(const std::string& kind, const std::string& value) {
  if (kind == "number" || kind == "port") return number(std::stoll(value));
  if (kind == "matchLimit" && value != "all") return number(std::stoll(value));
  if (kind == "returnAttributes" || kind == "returnData" || kind == "matchExactly")
    return NSNumber::numberWithBool(value == "1");
  if (kind == "class") return writtenText(value + " password");
  if (kind != "data" && kind != "valueData") return writtenText(value);
  return dataOf(value[0] == '@' ? std::string(std::stoul(value.substr(1)), 'x') : unescaped(value));
}

/// Returns the dictionary that a script writes as key=value..., or nil. The class is "generic" or "internet";
/// @N is a secret of N bytes; key:text=, key:number= and key:data= state the kind of a value.
inline NSRefPtr<NSDictionary> writtenMap(const std::string& written) {
  if (written == "nil") return nullptr;
  const auto dictionary = NSMutableDictionary::dictionary();
  std::istringstream words(written);
  for (std::string word; words >> word;) {
    const auto [name, value] = cut(word, "=");
    const auto [key, kind] = cut(name, ":");
    dictionary->setObject(writtenValue(kind.empty() ? key : kind, value), text(key));
  }
  return dictionary;
}
