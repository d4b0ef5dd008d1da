#pragma once

#include <Foundation/NSException.h>
#include <Foundation/NSNumber.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

/// Returns the string of well-formed UTF-8 that is known only at run time.
inline NSRef<NSString> text(std::string_view utf8) { return NSString::stringWithUTF8String(utf8); }

inline NSRef<NSNumber> number(std::int64_t value) { return NSNumber::numberWithInteger(value); }

/// Returns the exception that `action` raises, if any.
template <class Action>
std::optional<NSException> exceptionOf(Action&& action) {
  try {
    action();
  } catch (const NSException& exception) {
    return exception;
  }
  return {};
}

/// Returns the name of the exception that `action` raises, or "nothing".
template <class Action>
std::string raised(Action&& action) {
  const auto exception = exceptionOf(action);
  return exception ? static_cast<std::string>(*exception->name()) : "nothing";
}
