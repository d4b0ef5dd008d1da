#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <utility>

#include <Foundation/NSExport.h>

/// @file
/// The two handles of the object model. Each holds a reference to one object; an NSRefPtr may be nil, an
/// NSRef is not. A handle is one word. Handles may be copied and released on any thread; a single handle must
/// not be changed by two threads at once.

template <class T>
class NSRef;
template <class T>
class NSRefPtr;

/// Raises the invalid-argument exception: nil where an object is required.
[[noreturn]] NS_EXPORT void NSRaiseNilReference();

/// Whether U is T or a subclass of it.
template <class U, class T>
concept NSKindOf = std::convertible_to<U*, T*>;

/// Whether U is a subclass of T, or the same class with other qualifiers.
template <class U, class T>
concept NSOtherKindOf = NSKindOf<U, T> && !std::same_as<U, T>;

/// Whether a T is created implicitly from a value, by its static function `implicitly`.
template <class Value, class T>
concept NSConvertibleTo = requires(Value&& value) {
  { T::implicitly(std::forward<Value>(value)) } -> std::same_as<NSRefPtr<T>>;
};

/// A handle that may be nil.
template <class T>
class NSRefPtr {
 public:
  /// Nil.
  ///@{
  constexpr NSRefPtr() noexcept = default;
  constexpr NSRefPtr(std::nullptr_t) noexcept {}
  ///@}
  /// Takes a reference to the object; a null pointer becomes nil.
  explicit NSRefPtr(T* object) noexcept : object_(object) { retain(); }
  /// Takes a reference to the object of another handle of either kind, whose class is T or a subclass of it.
  /// A move takes over the other handle's reference and leaves that handle nil.
  ///@{
  NSRefPtr(const NSRefPtr& other) noexcept : object_(other.object_) { retain(); }
  NSRefPtr(NSRefPtr&& other) noexcept : object_(other.leak()) {}
  template <NSKindOf<T> U>
  NSRefPtr(const NSRefPtr<U>& other) noexcept : object_(other.get()) {
    retain();
  }
  template <NSKindOf<T> U>
  NSRefPtr(NSRefPtr<U>&& other) noexcept : object_(other.leak()) {}
  template <NSOtherKindOf<T> U>
  NSRefPtr(const NSRef<U>& other) : object_(other.get()) {
    retain();
  }
  template <NSOtherKindOf<T> U>
  NSRefPtr(NSRef<U>&& other) : object_(other.get()) {
    other.handle_.leak();
  }
  // Explicit, since there is also an implicit conversion, by a reference to the handle inside.
  explicit NSRefPtr(NSRef<T>&& other) : object_(other.get()) { other.handle_.leak(); }
  ///@}
  ~NSRefPtr() {
    if (object_) object_->release();
  }

  /// For classes that are created implicitly from other values, as blocks are from callables.
  template <NSConvertibleTo<T> Value>
  NSRefPtr(Value&& value) : NSRefPtr(T::implicitly(std::forward<Value>(value))) {}

  /// Releases its own object and takes a reference to the other's.
  NSRefPtr& operator=(NSRefPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  /// Takes over a reference that the caller holds.
  static NSRefPtr adopt(T* object) noexcept {
    NSRefPtr handle;
    handle.object_ = object;
    return handle;
  }

  /// Hands the reference over to the caller; the handle is nil afterwards.
  T* leak() noexcept { return std::exchange(object_, nullptr); }

  /// Returns the object, or null for nil; valid for as long as a handle holds a reference to it.
  T* get() const noexcept { return object_; }
  /// Returns the object. Using nil is undefined; debug builds assert that the handle is not nil.
  ///@{
  T& operator*() const noexcept {
    assert(object_ && "a nil handle is used");
    return *object_;
  }
  T* operator->() const noexcept { return &**this; }
  ///@}
  /// Whether it is not nil.
  explicit operator bool() const noexcept { return object_ != nullptr; }

 private:
  void retain() const noexcept {
    if (object_) object_->retain();
  }

  T* object_ = nullptr;
};

/// A handle that always holds an object. Nil given to it raises the invalid-argument exception, and so does
/// every use of an NSRef that was moved from, other than assigning to it and destroying it.
template <class T>
class NSRef {
 public:
  /// Takes a reference to the object, or to that of another handle of either kind, whose class is T or a
  /// subclass of it; a move takes over the other handle's reference. Nil raises the invalid-argument
  /// exception.
  ///@{
  NSRef(T& object) noexcept : handle_(&object) {}
  NSRef(std::nullptr_t) { NSRaiseNilReference(); }
  NSRef(const NSRef&) noexcept = default;
  NSRef(NSRef&&) noexcept = default;
  NSRef& operator=(const NSRef&) noexcept = default;
  NSRef& operator=(NSRef&&) noexcept = default;

  template <NSOtherKindOf<T> U>
  NSRef(const NSRef<U>& other) noexcept : handle_(other.handle_) {}
  template <NSOtherKindOf<T> U>
  NSRef(NSRef<U>&& other) noexcept : handle_(std::move(other.handle_)) {}
  template <NSKindOf<T> U>
  NSRef(const NSRefPtr<U>& other) : handle_(required(other.get())) {}
  ///@}

  /// Takes over a reference that the caller holds.
  static NSRef adopt(T& object) noexcept { return NSRef(Adopted{}, object); }

  /// Returns the object; valid for as long as a handle holds a reference to it.
  ///@{
  T* get() const { return required(handle_.get()); }
  T& operator*() const { return *get(); }
  T* operator->() const { return get(); }
  ///@}
  /// Returns the same handle where one that may be nil is expected.
  operator const NSRefPtr<T>&() const {
    required(handle_.get());
    return handle_;
  }

 private:
  template <class U>
  friend class NSRef;
  template <class U>
  friend class NSRefPtr;
  struct Adopted {};
  NSRef(Adopted, T& object) noexcept : handle_(NSRefPtr<T>::adopt(&object)) {}

  template <class U>
  static U* required(U* object) {
    if (!object) [[unlikely]]
      NSRaiseNilReference();
    return object;
  }

  NSRefPtr<T> handle_;
};

/// NSRef(handle) raises the invalid-argument exception for nil.
template <class U>
NSRef(const NSRefPtr<U>&) -> NSRef<U>;

/// Handles are equal when they hold the same object, or are both nil; values are compared with isEqual.
///@{
template <class T, class U>
bool operator==(const NSRefPtr<T>& a, const NSRefPtr<U>& b) noexcept {
  return a.get() == b.get();
}
template <class T, class U>
bool operator==(const NSRef<T>& a, const NSRef<U>& b) {
  return a.get() == b.get();
}
template <class T, class U>
bool operator==(const NSRef<T>& a, const NSRefPtr<U>& b) {
  return a.get() == b.get();
}
template <class T>
bool operator==(const NSRefPtr<T>& a, std::nullptr_t) noexcept {
  return a.get() == nullptr;
}
///@}
