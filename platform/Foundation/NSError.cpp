#include <Foundation/NSError.h>

const NSRef<NSString>& NSLocalizedDescriptionKey = NSConstantString("NSLocalizedDescription");
const NSRef<NSString>& NSUnderlyingErrorKey = NSConstantString("NSUnderlyingError");
const NSRef<NSString>& NSOSStatusErrorDomain = NSConstantString("NSOSStatusErrorDomain");

NSRef<NSError> NSError::errorWithDomain(NSStringArg domain, std::int64_t code,
                                        const NSRefPtr<NSDictionary>& userInfo) {
  return alloc(NSString::stringWithString(domain), code,
               userInfo ? userInfo->copy() : NSDictionary::dictionary());
}

NSRef<NSString> NSError::localizedDescription() const {
  if (const auto text = NSDynamicCast<NSString>(userInfo_->objectForKey(NSLocalizedDescriptionKey)))
    return text;
  return NSString::stringWithFormat("error %d of %@", code_, domain_);
}

bool NSError::isEqual(const NSRefPtr<NSObject>& other) const {
  const auto* error = NSDynamicCast<NSError>(other.get());
  return error && error->code_ == code_ && domain_->isEqual(error->domain_) &&
         userInfo_->isEqual(error->userInfo_);
}

NSRef<NSString> NSError::description() const {
  return NSString::stringWithFormat("%@ %d: %@", domain_, code_, localizedDescription());
}
