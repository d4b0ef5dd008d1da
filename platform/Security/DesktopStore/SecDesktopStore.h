#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>

#include <Security/DesktopStore/SecDesktopSession.h>

/// What SecDesktopStorage does. Safe from any thread.
class SecDesktopStore {
 public:
  explicit SecDesktopStore(SecDesktopOptions options) : options_(std::move(options)) {}

  OSStatus transact(SecStorage::Access access, const SecStorage::Work& work);
  OSStatus copyInfo(SecStorageInfo& info);
  void setWaitLimit(std::chrono::milliseconds limit);

 private:
  template <class Action>
  OSStatus alone(Action&& action);
  SecDesktopSession& session();

  const SecDesktopOptions options_;
  std::mutex mutex_;
  std::chrono::milliseconds waitLimit_{5000};
  std::optional<SecDesktopPlace> place_;        // of the first session
  std::unique_ptr<SecDesktopSession> session_;  // null before the first use and after a failure
};
