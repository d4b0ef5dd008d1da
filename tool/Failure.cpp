#include "tool/Failure.h"

#include <Security/SecItem.h>
#include <VXFoundation/VXFoundation.h>
#include <VXFoundation/VXKeychainErrorExplanation.h>

#include <cerrno>
#include <cstring>
#include <iostream>

#include "tool/Printable.h"

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

void failWithErrno(const Message& what) {
  const std::string reason = std::strerror(errno);
  throw Failure(what.text() + ": " + reason);
}

void complain(const Message& message) {
  std::cerr << "vxfoundation: " << printable(message.text()) << std::endl;
}

std::string messageOf(OSStatus status) {
  return std::to_string(status) + ": " + std::string(*SecCopyErrorMessageString(status));
}

Failure failureOf(OSStatus status, const Message& what) { return Failure(explained(what.text(), status)); }

void requireSuccess(OSStatus status, const Message& what) {
  if (status != errSecSuccess) throw failureOf(status, what);
}

std::string explain(const NSError& error) {
  const std::string description(*error.localizedDescription());
  const auto underlying = NSDynamicCast<NSError>(error.userInfo()->objectForKey(NSUnderlyingErrorKey));
  return underlying ? explained(description, static_cast<OSStatus>(underlying->code())) : description;
}
