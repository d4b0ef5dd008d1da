#pragma once

#include <Foundation/NSError.h>
#include <Security/SecStatus.h>

#include <stdexcept>
#include <string>
#include <utility>

#include "tool/Message.h"

/// Why a subcommand failed, in one line for standard error. Ends the tool with status 1.
class Failure : public std::runtime_error {
 public:
  /// The details are lines for people that follow the message on standard error.
  explicit Failure(const Message& message, std::string details = "")
      : std::runtime_error(message.text()), details_(std::move(details)) {}

  const std::string& details() const { return details_; }

 private:
  std::string details_;
};

/// Throws Failure with the system's message for `errno` after `what`.
[[noreturn]] void failWithErrno(const Message& what);
/// Writes a failure to standard error, as one printable line.
void complain(const Message& message);

/// Returns the number of a status and the platform's message for it.
std::string messageOf(OSStatus status);
/// Returns a failure with `what`, what to do about it, if that is known, and that message.
Failure failureOf(OSStatus status, const Message& what);
/// Throws that failure, unless the status is errSecSuccess.
void requireSuccess(OSStatus status, const Message& what);
/// Returns the description of a keychain error, what to do about it, if that is known, and the status and
/// message of the platform's error underneath it, if there is one.
std::string explain(const NSError& error);
