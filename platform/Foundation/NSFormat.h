#pragma once

#include <concepts>
#include <initializer_list>
#include <span>

#include <Foundation/NSArg.h>
#include <Foundation/NSObject.h>

/// An object in any form that NSObjectArg takes, other than an array.
template <class Value>
concept NSFormattedObject = std::convertible_to<const Value&, NSObjectArg> && !std::is_array_v<Value>;

/// One argument of a format: an object or nil, or an integer. It holds no reference to the object.
class NSFormatArg {
 public:
  /// Takes an integer of any width, or an object in the forms that NSFormattedObject allows.
  ///@{
  template <std::signed_integral Integer>
  NSFormatArg(Integer value) noexcept : kind_(Kind::signedInteger), integer_(value) {}
  template <std::unsigned_integral Integer>
  NSFormatArg(Integer value) noexcept : kind_(Kind::unsignedInteger), unsignedInteger_(value) {}
  template <NSFormattedObject Value>
  NSFormatArg(const Value& object) : object_(object) {}
  NSFormatArg(const char* utf8) noexcept : object_(utf8) {}
  ///@}

  /// Which of the three kinds the argument is. A boolean is unsigned.
  ///@{
  bool isObject() const noexcept { return kind_ == Kind::object; }
  bool isSigned() const noexcept { return kind_ == Kind::signedInteger; }
  bool isUnsigned() const noexcept { return kind_ == Kind::unsignedInteger; }
  ///@}

  /// Returns the value; nil or 0 for an argument of another kind.
  ///@{
  NSObjectArg object() const noexcept { return object_; }
  long long signedInteger() const noexcept { return integer_; }
  unsigned long long unsignedInteger() const noexcept { return unsignedInteger_; }
  ///@}

 private:
  enum class Kind { object, signedInteger, unsignedInteger };

  Kind kind_ = Kind::object;
  NSObjectArg object_ = nullptr;
  long long integer_ = 0;
  unsigned long long unsignedInteger_ = 0;
};

/// Returns the format with its directives filled in, in order: "%@" is replaced by an object's description,
/// or by "(null)" for nil; "%d" by a signed decimal; "%lu" by an unsigned one; "%%" by a percent sign. An
/// unknown directive, a missing or surplus argument, one of the wrong kind, or a nil format raises the
/// invalid-argument exception.
///@{
NS_EXPORT NSRef<NSString> NSFormat(NSStringArg format, std::span<const NSFormatArg> arguments);
NS_EXPORT NSRef<NSString> NSFormat(NSStringArg format, std::initializer_list<NSFormatArg> arguments);
///@}
