#pragma once

#include <Security/SecDefaultStorage.h>
#include <Security/SecItem.h>
#include <Security/SecMemoryStorage.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Support.h"

/// A store that answers every transaction with one status, and counts them.
class AnsweringStorage : public SecStorage {
 public:
  explicit AnsweringStorage(OSStatus status) : status_(status) {}
  OSStatus transact(Access, const Work&) override {
    ++transactions;
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
inline std::string shown(const RefPtr<NSObject>& object) {
  if (!object) return "nil";
  if (const auto data = dynamicCast<NSData>(object))
    return {reinterpret_cast<const char*>(data->bytes().data()), data->length()};
  const auto map = dynamicCast<NSDictionary>(object);
  if (!map) return std::string(*object->description());
  std::string all;
  map->enumerateKeysAndObjectsUsingBlock([&](const Ref<NSObject>& key, const Ref<NSObject>& value, bool*) {
    if (!all.empty()) all += ' ';
    all.append(shown(key)).append(1, '=').append(shown(value));
  });
  return all;
}

inline Ref<NSData> bytes(std::string_view content) {
  return NSData::dataWithBytes(content.data(), content.size());
}
