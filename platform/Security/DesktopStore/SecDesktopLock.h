#pragma once

#include <chrono>

#include <Security/DesktopStore/SecDesktopBus.h>

/// The lock that changes are made under, shared by all processes on the bus: whoever owns a certain bus name
/// holds it. The bus takes it away from a process that ends. Fails by throwing SecFailure.
class SecDesktopLock {
 public:
  /// Waits for the lock. Fails with errSecBusy if it is not free within the limit. Where the bus does not let
  /// programs own the name, as in a sandbox, nothing is locked.
  SecDesktopLock(SecDesktopBus& bus, std::chrono::milliseconds limit);
  SecDesktopLock(const SecDesktopLock&) = delete;
  SecDesktopLock& operator=(const SecDesktopLock&) = delete;
  ~SecDesktopLock();

  /// Returns whether the bus lets programs own the name.
  static bool isAllowed(SecDesktopBus& bus);

 private:
  SecDesktopBus& bus_;
};
