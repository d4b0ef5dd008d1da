#pragma once

#include <Foundation/NSError.h>
#include <Security/SecStatus.h>

#include <stdexcept>
#include <string>

/// Why a subcommand failed, in one line for standard error. Ends the tool with status 1.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws Failure with the system's message for `errno` after `what`.
[[noreturn]] void failWithErrno(const std::string& what);
/// Writes a failure to standard error, as one line.
void complain(std::string message);

/// Returns the number of a status and the platform's message for it.
std::string messageOf(OSStatus status);
/// Throws Failure with `what`, what to do about it, if that is known, and that message, unless the status is
/// errSecSuccess.
void requireSuccess(OSStatus status, const std::string& what);
/// Returns the description of a keychain error, what to do about it, if that is known, and the status and
/// message of the platform's error underneath it, if there is one.
std::string explain(const NSError& error);
