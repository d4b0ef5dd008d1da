#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <string_view>

#include <Foundation/NSObject.h>
#include <Foundation/NSUnicode.h>

class NSString;

/// A new text of a literal in UTF-8; bytes that are not raise the invalid-argument exception.
FOUNDATION_EXPORT Ref<NSString> NSStringFromLiteral(std::string_view literal);

/// How an operation takes an object that the caller may spell as a handle, as the object itself, as nil or
/// as a UTF-8 literal, which is checked when compiling. For parameters only: it does not share in the
/// object, which must outlive it.
template <class T>
class Parameter {
 public:
  /// Nil, the object itself, or that of a handle.
  ///@{
  constexpr Parameter(std::nullptr_t) noexcept {}
  Parameter(const T& object) noexcept : object_(&object) {}
  template <class U>
  requires std::convertible_to<U*, T*> Parameter(const RefPtr<U>& handle)
  noexcept : object_(handle.get()) {}
  template <class U>
  requires std::convertible_to<U*, T*> Parameter(const Ref<U>& handle)
  noexcept : object_(handle.get()) {}
  ///@}

  /// A literal; one that is not UTF-8 does not compile.
  template <std::size_t Size>
  consteval Parameter(const char (&literal)[Size]) : literal_(literal), length_(Size - 1) {
    if (!NSIsUTF8({literal, Size - 1})) throw "a literal text must be UTF-8";
  }

  /// Whether it is not nil.
  explicit operator bool() const noexcept { return object_ || literal_; }

  /// A share in the object, absent for nil; of a literal a new text.
  RefPtr<T> get() const {
    if (literal_) return NSStringFromLiteral({literal_, length_});
    return RefPtr<T>(const_cast<T*>(object_));
  }

  /// The object for as long as the result lives, without a share in it unless it is new.
  class Borrowed {
   public:
    /// Makes the text of a literal and keeps it.
    explicit Borrowed(const Parameter& parameter)
        : made_(parameter.literal_ ? parameter.get() : nullptr),
          object_(made_ ? made_.get() : parameter.object_) {}
    /// Whether it is not nil.
    explicit operator bool() const noexcept { return object_ != nullptr; }
    /// The object, which must be there: debug builds assert that.
    ///@{
    const T& operator*() const noexcept {
      assert(object_ && "nil is used");
      return *object_;
    }
    const T* operator->() const noexcept { return &**this; }
    ///@}

   private:
    RefPtr<T> made_;
    const T* object_;
  };
  /// The object for use at once.
  Borrowed borrow() const { return Borrowed(*this); }

 private:
  const T* object_ = nullptr;
  const char* literal_ = nullptr;
  std::size_t length_ = 0;
};

/// A parameter that takes any object; a literal becomes a text.
using Object = Parameter<NSObject>;
/// A parameter that takes a text.
using Text = Parameter<NSString>;
