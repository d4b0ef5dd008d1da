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

void failWithErrno(const std::string& what) { throw Failure(what + ": " + std::strerror(errno)); }

void complain(const std::string& message) {
  std::cerr << "vxfoundation: " << printable(message) << std::endl;
}

std::string libraryText(const char* key, const char* table) {
  const auto bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  return std::string(*bundle->localizedStringForKey(NSString::stringWithUTF8String(key), "",
                                                    NSString::stringWithUTF8String(table)));
}

std::string messageOf(OSStatus status) {
  return std::to_string(status) + ": " + std::string(*SecCopyErrorMessageString(status));
}

Failure failureOf(OSStatus status, const std::string& what) { return Failure(explained(what, status)); }

void requireSuccess(OSStatus status, const std::string& what) {
  if (status != errSecSuccess) throw failureOf(status, what);
}

std::string explain(const NSError& error) {
  const std::string description(*error.localizedDescription());
  const auto underlying = NSDynamicCast<NSError>(error.userInfo()->objectForKey(NSUnderlyingErrorKey));
  return underlying ? explained(description, static_cast<OSStatus>(underlying->code())) : description;
}
