#pragma once

#include <Foundation/NSError.h>
#include <Security/SecStatus.h>

#include <stdexcept>
#include <string>

/// Why a subcommand could not do its work, in one line for standard error. Ends the tool with status 1.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The number of a status and the platform's message for it.
std::string messageOf(OSStatus status);
/// Throws Failure with that message after `what`, unless the status is errSecSuccess.
void requireSuccess(OSStatus status, const std::string& what);
/// The description of a keychain error, with the platform's status and message where there is one underneath.
std::string explain(const NSError& error);
