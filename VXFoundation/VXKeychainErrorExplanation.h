#pragma once

#include <Foundation/NSError.h>

#include <optional>

/// What a person needs to know about an error: two sentences in the user's language.
struct VXErrorExplanation {
  NSRef<NSString> whatHappened;  ///< one sentence that names the cause
  NSRef<NSString> whatToDo;      ///< one sentence that names the way out
};

/// Explains an error of a keychain item, or one of the domain NSOSStatusErrorDomain: a keychain that is
/// locked, in use, read-only, damaged, put back to an earlier state or without space, a service that does not
/// run, a prompt that was dismissed, and a duplicate. Returns no value for nil and for any other error. The
/// sentences are in the table "Recovery" of the library's bundle, next to the titles "Replace", "Try Again"
/// and "Unlock" for recovery options. Safe from any thread.
NS_EXPORT std::optional<VXErrorExplanation> VXKeychainErrorExplanation(const NSRefPtr<NSError>& error);
