#include <Foundation/NSNumber.h>

#include <Foundation/NSString.h>

NSRef<NSNumber> NSNumber::numberWithInteger(std::int64_t value) { return alloc(value, false); }

NSRef<NSNumber> NSNumber::numberWithBool(bool value) { return alloc(value ? 1 : 0, true); }

bool NSNumber::isEqual(const NSRefPtr<NSObject>& other) const {
  const auto* number = NSDynamicCast<NSNumber>(other.get());
  return number && number->value_ == value_;
}

NSRef<NSString> NSNumber::description() const { return NSString::stringWithFormat("%d", value_); }
