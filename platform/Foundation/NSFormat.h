#pragma once

#include <concepts>
#include <initializer_list>
#include <span>

#include <Foundation/NSObject.h>
#include <Foundation/Parameter.h>

/// One argument of a format: an object or nil, or an integer. Holds no share in the object.
class FormatArgument {
 public:
  /// An integer of any width, or an object in any spelling that Object takes, but for a literal.
  ///@{
  template <std::signed_integral Integer>
  FormatArgument(Integer value) noexcept : kind_(Kind::signedInteger), integer_(value) {}
  template <std::unsigned_integral Integer>
  FormatArgument(Integer value) noexcept : kind_(Kind::unsignedInteger), unsignedInteger_(value) {}
  template <class Value>
  requires(std::convertible_to<const Value&, Object> && !std::is_array_v<Value>)
      FormatArgument(const Value& object)
  noexcept : object_(object) {}
  ///@}

  /// Which of the three kinds it is of. A boolean is unsigned.
  ///@{
  bool isObject() const noexcept { return kind_ == Kind::object; }
  bool isSigned() const noexcept { return kind_ == Kind::signedInteger; }
  bool isUnsigned() const noexcept { return kind_ == Kind::unsignedInteger; }
  ///@}

  /// The value; nil or 0 for an argument of another kind.
  ///@{
  Object object() const noexcept { return object_; }
  long long signedInteger() const noexcept { return integer_; }
  unsigned long long unsignedInteger() const noexcept { return unsignedInteger_; }
  ///@}

 private:
  enum class Kind { object, signedInteger, unsignedInteger };

  Kind kind_ = Kind::object;
  Object object_ = nullptr;
  long long integer_ = 0;
  unsigned long long unsignedInteger_ = 0;
};

/// The format with its directives filled in, in order: "%@" an object's description, "(null)" for nil; "%d" a
/// signed decimal; "%lu" an unsigned one; "%%" a per cent sign. An unknown directive, a missing or left-over
/// argument or one of the wrong kind raises the invalid-argument exception.
///@{
FOUNDATION_EXPORT Ref<NSString> NSFormat(const NSString& format, std::span<const FormatArgument> arguments);
FOUNDATION_EXPORT Ref<NSString> NSFormat(const NSString& format,
                                         std::initializer_list<FormatArgument> arguments);
///@}
