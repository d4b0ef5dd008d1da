#pragma once

#include <cstdint>

#include <Foundation/NSObject.h>

/// A signed 64-bit integer or a boolean, which equals the integers 0 and 1. Fixed, so that any number of
/// threads may use one at once.
class FOUNDATION_EXPORT NSNumber : public NSObject::Subclass<NSNumber> {
 public:
  using HashAgreesWithEquality = NSNumber;

  static Ref<NSNumber> numberWithInteger(std::int64_t value);
  static Ref<NSNumber> numberWithBool(bool value);

  std::int64_t integerValue() const noexcept { return value_; }
  bool boolValue() const noexcept { return value_ != 0; }
  bool isBoolean() const noexcept { return boolean_; }

  bool isEqual(const RefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return static_cast<std::size_t>(value_); }
  Ref<NSString> description() const override;

 protected:
  template <class Self>
  friend class NSAllocated;

  NSNumber(std::int64_t value, bool boolean) : value_(value), boolean_(boolean) {}

 private:
  std::int64_t value_;
  bool boolean_;
};
