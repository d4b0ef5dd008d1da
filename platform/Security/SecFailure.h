#pragma once

#include <new>
#include <utility>

#include <Security/SecStatus.h>

/// Why an operation of the credential store failed. Everything below the public calls throws it; the public
/// calls (SecItemAdd and the like, and the operations of a storage) catch it and return its status.
struct NS_EXPORT SecFailure {
  OSStatus status;  ///< never errSecSuccess
};

/// Runs `action` and returns errSecSuccess, the status of the failure that it threw, or errSecAllocate if
/// memory ran out. Other exceptions pass through.
template <class Action>
OSStatus secStatusOf(Action&& action) {
  try {
    std::forward<Action>(action)();
    return errSecSuccess;
  } catch (const SecFailure& failure) {
    return failure.status;
  } catch (const std::bad_alloc&) {
    return errSecAllocate;
  }
}

/// Throws a failure with the status `otherwise` unless the condition holds.
inline void secRequire(bool condition, OSStatus otherwise) {
  if (!condition) throw SecFailure{otherwise};
}

/// Throws a failure unless the status is errSecSuccess.
inline void secCheck(OSStatus status) { secRequire(status == errSecSuccess, status); }
