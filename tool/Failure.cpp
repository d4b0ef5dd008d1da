#include "tool/Failure.h"

#include <Security/SecItem.h>

std::string messageOf(OSStatus status) {
  return std::to_string(status) + ": " + std::string(*SecCopyErrorMessageString(status));
}

void requireSuccess(OSStatus status, const std::string& what) {
  if (status != errSecSuccess) throw Failure(what + " (" + messageOf(status) + ')');
}

std::string explain(const NSError& error) {
  const std::string description(*error.localizedDescription());
  const auto underlying = NSDynamicCast<NSError>(error.userInfo()->objectForKey(NSUnderlyingErrorKey));
  return underlying ? description + " (" + messageOf(static_cast<OSStatus>(underlying->code())) + ')'
                    : description;
}
