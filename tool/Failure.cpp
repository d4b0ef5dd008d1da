#include "tool/Failure.h"

#include <Security/SecItem.h>
#include <VXFoundation/VXKeychainErrorExplanation.h>

namespace {

/// Returns `what` with what happened and what to do about it, if that is known, and the status.
std::string explained(std::string what, OSStatus status) {
  const auto error = NSError::errorWithDomain(NSOSStatusErrorDomain, status, nullptr);
  if (const auto explanation = VXKeychainErrorExplanation(error)) {
    what += ". " + std::string(*explanation->whatHappened) + ' ' + std::string(*explanation->whatToDo);
  }
  return what + " (" + messageOf(status) + ')';
}

}  // namespace

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>

void failWithErrno(const std::string& what) { throw Failure(what + ": " + std::strerror(errno)); }

void complain(std::string message) {
  // A name in the message may contain newlines, but the message is always one line.
  std::replace(message.begin(), message.end(), '\n', ' ');
  std::cerr << "vxfoundation: " << message << std::endl;
}

std::string messageOf(OSStatus status) {
  return std::to_string(status) + ": " + std::string(*SecCopyErrorMessageString(status));
}

void requireSuccess(OSStatus status, const std::string& what) {
  if (status != errSecSuccess) throw Failure(explained(what, status));
}

std::string explain(const NSError& error) {
  const std::string description(*error.localizedDescription());
  const auto underlying = NSDynamicCast<NSError>(error.userInfo()->objectForKey(NSUnderlyingErrorKey));
  return underlying ? explained(description, static_cast<OSStatus>(underlying->code())) : description;
}
