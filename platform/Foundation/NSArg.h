#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include <Foundation/NSObject.h>
#include <Foundation/NSUnicode.h>

class NSString;

/// Returns a new string from UTF-8. Malformed UTF-8 raises the invalid-argument exception, whose reason names
/// the operation.
NS_EXPORT NSRef<NSString> NSStringFromUTF8(std::string_view utf8, const char* operation);

/// A pointer to characters, and not an array of them, as a literal is.
template <class Pointer>
concept NSCharacterPointer = std::same_as<Pointer, const char*> || std::same_as<Pointer, char*>;

/// A parameter type for an object that the caller may pass as a handle, as the object itself, as nil or, for
/// a string, as UTF-8: a literal, which is checked at compile time, a std::string_view, a std::string or a
/// null-terminated array, which are checked when the operation uses them; malformed UTF-8 raises the
/// invalid-argument exception with the operation's name. For parameters only: it holds no reference to the
/// object or the bytes, which must outlive it.
template <class T>
class NSArg {
 public:
  /// Takes nil, the object itself, or the object of a handle.
  ///@{
  constexpr NSArg(std::nullptr_t) noexcept {}
  NSArg(const T& object) noexcept : content_(&object) {}
  template <NSKindOf<T> U>
  NSArg(const NSRefPtr<U>& handle) noexcept : content_(static_cast<const T*>(handle.get())) {}
  template <NSKindOf<T> U>
  NSArg(const NSRef<U>& handle) : content_(static_cast<const T*>(handle.get())) {}
  ///@}

  /// Takes a literal; malformed UTF-8 does not compile.
  template <std::size_t Size>
  consteval NSArg(const char (&literal)[Size]) : content_(literal), length_(Size - 1) {
    if (!NSIsUTF8({literal, Size - 1})) throw "a string literal must be UTF-8";
  }

  /// Takes UTF-8 that is known only at run time. A null pointer is nil, an empty view the empty string.
  ///@{
  NSArg(std::string_view utf8) noexcept : content_(utf8.data() ? utf8.data() : ""), length_(utf8.size()) {}
  NSArg(const std::string& utf8) noexcept : content_(utf8.data()), length_(utf8.size()) {}
  template <NSCharacterPointer Pointer>
  NSArg(const Pointer& utf8) noexcept : content_(utf8), length_(utf8 ? std::strlen(utf8) : isObject) {}
  template <std::size_t Size>
  NSArg(char (&utf8)[Size]) noexcept : content_(utf8), length_(std::strlen(utf8)) {}
  ///@}

  /// Whether it is not nil.
  explicit operator bool() const noexcept { return content_ != nullptr; }
  /// Whether it was given as UTF-8, so that get() and borrow() create a string.
  bool isUTF8() const noexcept { return length_ != isObject; }

  /// Returns a handle to the object, nil for nil, or a new string made of UTF-8. Where that is malformed, the
  /// exception names `operation`: the calling function, unless that passes its own caller's name on.
  NSRefPtr<T> get(const char* operation = __builtin_FUNCTION()) const {
    if (isUTF8()) return NSStringFromUTF8({static_cast<const char*>(content_), length_}, operation);
    return NSRefPtr<T>(const_cast<T*>(object()));
  }

  /// The object, valid for as long as this lives; it holds a reference only to a string that it created.
  class Borrowed {
   public:
    /// Creates the string of UTF-8 and keeps it.
    Borrowed(const NSArg& argument, const char* operation)
        : made_(argument.isUTF8() ? argument.get(operation) : nullptr),
          object_(made_ ? made_.get() : argument.object()) {}
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
  /// Returns the object for immediate use; as get() otherwise.
  Borrowed borrow(const char* operation = __builtin_FUNCTION()) const { return Borrowed(*this, operation); }

 private:
  static constexpr auto isObject = static_cast<std::size_t>(-1);

  const T* object() const noexcept { return static_cast<const T*>(content_); }

  // Two words are passed in registers; a third would send all of them through memory.
  const void* content_ = nullptr;  // the object, or UTF-8
  std::size_t length_ = isObject;
};

/// A parameter that takes any object; UTF-8 becomes a string.
using NSObjectArg = NSArg<NSObject>;
/// A parameter that takes a string.
using NSStringArg = NSArg<NSString>;
