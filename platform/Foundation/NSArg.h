#pragma once

#include <cassert>
#include <cstddef>
#include <string_view>

#include <Foundation/NSObject.h>
#include <Foundation/NSUnicode.h>

class NSString;

/// Returns a new string from a UTF-8 literal. Malformed UTF-8 raises the invalid-argument exception.
NS_EXPORT NSRef<NSString> NSStringFromLiteral(std::string_view literal);

/// A parameter type for an object that the caller may pass as a handle, as the object itself, as nil or as a
/// UTF-8 literal, which is checked at compile time. For parameters only: it holds no reference to the object,
/// which must outlive it.
template <class T>
class NSArg {
 public:
  /// Takes nil, the object itself, or the object of a handle.
  ///@{
  constexpr NSArg(std::nullptr_t) noexcept {}
  NSArg(const T& object) noexcept : object_(&object) {}
  template <NSKindOf<T> U>
  NSArg(const NSRefPtr<U>& handle) noexcept : object_(handle.get()) {}
  template <NSKindOf<T> U>
  NSArg(const NSRef<U>& handle) : object_(handle.get()) {}
  ///@}

  /// Takes a literal; malformed UTF-8 does not compile.
  template <std::size_t Size>
  consteval NSArg(const char (&literal)[Size]) : literal_(literal), length_(Size - 1) {
    if (!NSIsUTF8({literal, Size - 1})) throw "a string literal must be UTF-8";
  }

  /// Whether it is not nil.
  explicit operator bool() const noexcept { return object_ || literal_; }

  /// Returns a handle to the object, nil for nil, or a new string for a literal.
  NSRefPtr<T> get() const {
    if (literal_) return NSStringFromLiteral({literal_, length_});
    return NSRefPtr<T>(const_cast<T*>(object_));
  }

  /// The object, valid for as long as this lives; it holds a reference only to a string created from a
  /// literal.
  class Borrowed {
   public:
    /// Creates the string of a literal and keeps it.
    explicit Borrowed(const NSArg& argument)
        : made_(argument.literal_ ? argument.get() : nullptr),
          object_(made_ ? made_.get() : argument.object_) {}
    /// Whether it is not nil.
    explicit operator bool() const noexcept { return object_ != nullptr; }
    /// Returns the object. Using nil is undefined; debug builds assert that it is not nil.
    ///@{
    const T& operator*() const noexcept {
      assert(object_ && "nil is used");
      return *object_;
    }
    const T* operator->() const noexcept { return &**this; }
    ///@}

   private:
    NSRefPtr<T> made_;
    const T* object_;
  };
  /// Returns the object for immediate use.
  Borrowed borrow() const { return Borrowed(*this); }

 private:
  const T* object_ = nullptr;
  const char* literal_ = nullptr;
  std::size_t length_ = 0;
};

/// A parameter that takes any object; a literal becomes a string.
using NSObjectArg = NSArg<NSObject>;
/// A parameter that takes a string.
using NSStringArg = NSArg<NSString>;
