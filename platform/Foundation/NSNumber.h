#pragma once

#include <cstdint>

#include <Foundation/NSObject.h>

/// A signed 64-bit integer or a boolean, which equals the integer 0 or 1. Immutable, so that any number of
/// threads may use one at once.
class NS_EXPORT NSNumber : public NSObject::Subclass<NSNumber> {
 public:
  /// Equal numbers have equal hashes.
  using HashAgreesWithEquality = NSNumber;

  /// Returns a number of either kind.
  ///@{
  static NSRef<NSNumber> numberWithInteger(std::int64_t value);
  static NSRef<NSNumber> numberWithBool(bool value);
  ///@}

  /// Returns the value of a number of either kind: true is 1, and every integer but 0 is true.
  ///@{
  std::int64_t integerValue() const noexcept { return value_; }
  bool boolValue() const noexcept { return value_ != 0; }
  ///@}
  /// Whether it was created from a boolean.
  bool isBoolean() const noexcept { return boolean_; }

  /// Numbers are equal by value, whatever their kind; the description is the integer in decimal.
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return static_cast<std::size_t>(value_); }
  NSRef<NSString> description() const override;
  ///@}

 protected:
  /// A boolean has the value 0 or 1.
  NSNumber(std::int64_t value, bool boolean) : value_(value), boolean_(boolean) {}

 private:
  std::int64_t value_;
  bool boolean_;
};
