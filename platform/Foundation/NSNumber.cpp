#include <Foundation/NSNumber.h>

#include <Foundation/NSString.h>

Ref<NSNumber> NSNumber::numberWithInteger(std::int64_t value) { return alloc(value, false); }

Ref<NSNumber> NSNumber::numberWithBool(bool value) { return alloc(value ? 1 : 0, true); }

bool NSNumber::isEqual(const RefPtr<NSObject>& other) const {
  const auto* number = dynamicCast<NSNumber>(other.get());
  return number && number->value_ == value_;
}

Ref<NSString> NSNumber::description() const { return NSString::stringWithFormat("%d", value_); }
