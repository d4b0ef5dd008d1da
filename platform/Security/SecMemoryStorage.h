#pragma once

#include <Foundation/NSExport.h>

#include <map>
#include <mutex>

#include <Security/SecStorage.h>

/// A storage whose entries end with the process, for tests and throw-away hosts. Safe from any thread.
class NS_EXPORT SecMemoryStorage final : public SecStorage {
 public:
  OSStatus transact(Access access, const Work& work) override;
  OSStatus copyInfo(SecStorageInfo& info) override;

 private:
  class Transaction;

  std::mutex mutex_;
  std::map<std::int64_t, SecEntry> entries_;  // by number, so oldest first
  std::int64_t lastNumber_ = 0;
};
