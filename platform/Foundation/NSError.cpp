#include <Foundation/NSError.h>

const Ref<NSString> NSLocalizedDescriptionKey = NSString::stringWithString("NSLocalizedDescription");
const Ref<NSString> NSUnderlyingErrorKey = NSString::stringWithString("NSUnderlyingError");
const Ref<NSString> NSOSStatusErrorDomain = NSString::stringWithString("NSOSStatusErrorDomain");

Ref<NSError> NSError::errorWithDomain(Text domain, std::int64_t code, const RefPtr<NSDictionary>& userInfo) {
  return alloc(NSString::stringWithString(domain), code,
               userInfo ? userInfo->copy() : NSDictionary::dictionary());
}

Ref<NSString> NSError::localizedDescription() const {
  if (const auto text = dynamicCast<NSString>(userInfo_->objectForKey(NSLocalizedDescriptionKey)))
    return text;
  return NSString::stringWithFormat("error %d of %@", code_, domain_);
}

bool NSError::isEqual(const RefPtr<NSObject>& other) const {
  const auto* error = dynamicCast<NSError>(other.get());
  return error && error->code_ == code_ && domain_->isEqual(error->domain_) &&
         userInfo_->isEqual(error->userInfo_);
}

Ref<NSString> NSError::description() const {
  return NSString::stringWithFormat("%@ %d: %@", domain_, code_, localizedDescription());
}
