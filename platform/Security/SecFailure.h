#pragma once

#include <new>
#include <utility>

#include <Security/SecBase.h>

/// Thrown within a storage where a status ends the whole operation; never leaves it.
struct SecFailure {
  OSStatus status;
};

/// Runs `action`, which gives a status, and turns a failure or a want of memory into one as well.
template <class Action>
OSStatus secGuarded(Action&& action) {
  try {
    return std::forward<Action>(action)();
  } catch (const SecFailure& failure) {
    return failure.status;
  } catch (const std::bad_alloc&) {
    return errSecAllocate;
  }
}

inline void secRequire(bool condition, OSStatus otherwise) {
  if (!condition) throw SecFailure{otherwise};
}
