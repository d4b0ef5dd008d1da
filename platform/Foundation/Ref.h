#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <utility>

#include <Foundation/FoundationExport.h>

/// @file
/// The two handles of the object model. Both share in the ownership of one object; RefPtr may be absent,
/// Ref is not. A handle is one word. Handles may be copied and let go of on any thread; one and the same
/// handle must not be changed on two threads at once.

template <class T>
class Ref;
template <class T>
class RefPtr;

/// Raises the invalid-argument exception: nil where an object is required.
[[noreturn]] FOUNDATION_EXPORT void NSRaiseNilReference();

/// Whether a class T is made implicitly from a value, by its own operation `implicitly`.
template <class T, class Value>
concept NSMadeFrom = requires(Value&& value) {
  { T::implicitly(std::forward<Value>(value)) } -> std::same_as<RefPtr<T>>;
};

/// A handle that may be absent.
template <class T>
class RefPtr {
 public:
  /// Absent.
  ///@{
  constexpr RefPtr() noexcept = default;
  constexpr RefPtr(std::nullptr_t) noexcept {}
  ///@}
  /// Shares in the object; null gives absent.
  explicit RefPtr(T* object) noexcept : object_(object) { retain(); }
  /// Shares in the object of another handle of either kind, of T or a class below it. Moving takes the share
  /// over, and leaves that handle absent.
  ///@{
  RefPtr(const RefPtr& other) noexcept : object_(other.object_) { retain(); }
  RefPtr(RefPtr&& other) noexcept : object_(other.leak()) {}
  template <class U>
  requires std::convertible_to<U*, T*> RefPtr(const RefPtr<U>& other)
  noexcept : object_(other.get()) { retain(); }
  template <class U>
  requires std::convertible_to<U*, T*> RefPtr(RefPtr<U>&& other)
  noexcept : object_(other.leak()) {}
  template <class U>
  requires(std::convertible_to<U*, T*> && !std::same_as<U, T>) RefPtr(const Ref<U>& other)
  noexcept : object_(other.get()) { retain(); }

  template <class U>
  requires(std::convertible_to<U*, T*> && !std::same_as<U, T>) RefPtr(Ref<U>&& other)
  noexcept : object_(other.handle_.leak()) {}
  ///@}
  ~RefPtr() {
    if (object_) object_->release();
  }

  /// For classes that are made implicitly from other values, as blocks are from callables.
  template <class Value>
  requires NSMadeFrom<T, Value> RefPtr(Value&& value) : RefPtr(T::implicitly(std::forward<Value>(value))) {}

  /// Lets go of its object and shares in the other's.
  RefPtr& operator=(RefPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  /// Takes over a reference that the caller holds.
  static RefPtr adopt(T* object) noexcept {
    RefPtr handle;
    handle.object_ = object;
    return handle;
  }

  /// Hands the reference over to the caller; the handle is absent afterwards.
  T* leak() noexcept { return std::exchange(object_, nullptr); }

  /// The object, null when absent; for as long as a handle shares in it.
  T* get() const noexcept { return object_; }
  /// The object, which must be there: debug builds assert that.
  ///@{
  T& operator*() const noexcept {
    assert(object_ && "an absent handle is used");
    return *object_;
  }
  T* operator->() const noexcept { return &**this; }
  ///@}
  /// Whether it is not absent.
  explicit operator bool() const noexcept { return object_ != nullptr; }

 private:
  void retain() const noexcept {
    if (object_) object_->retain();
  }

  T* object_ = nullptr;
};

/// A handle that always holds an object. Nil given to it raises the invalid-argument exception. A Ref that
/// was moved from may only be assigned to or let go of, which debug builds assert.
template <class T>
class Ref {
 public:
  /// Shares in the object, or in that of another handle of either kind, of T or a class below it; moving
  /// takes the share over. Nil and an absent handle raise the invalid-argument exception.
  ///@{
  Ref(T& object) noexcept : handle_(&object) {}
  Ref(std::nullptr_t) { NSRaiseNilReference(); }
  Ref(const Ref&) noexcept = default;
  Ref(Ref&&) noexcept = default;
  Ref& operator=(const Ref&) noexcept = default;
  Ref& operator=(Ref&&) noexcept = default;

  template <class U>
  requires(std::convertible_to<U*, T*> && !std::same_as<U, T>) Ref(const Ref<U>& other)
  noexcept : handle_(other.get()) {}
  template <class U>
  requires(std::convertible_to<U*, T*> && !std::same_as<U, T>) Ref(Ref<U>&& other)
  noexcept : handle_(std::move(other.handle_)) {}
  template <class U>
  requires std::convertible_to<U*, T*> Ref(const RefPtr<U>& other) : handle_(required(other.get())) {}
  ///@}

  /// Takes over a reference that the caller holds.
  static Ref adopt(T& object) noexcept { return Ref(Adopted{}, object); }

  /// The object, never null; for as long as a handle shares in it.
  ///@{
  T* get() const noexcept { return &*handle_; }
  T& operator*() const noexcept { return *handle_; }
  T* operator->() const noexcept { return get(); }
  ///@}
  /// The same handle where one that may be absent is wanted.
  operator const RefPtr<T>&() const noexcept { return handle_; }

 private:
  template <class U>
  friend class Ref;
  template <class U>
  friend class RefPtr;
  struct Adopted {};
  Ref(Adopted, T& object) noexcept : handle_(RefPtr<T>::adopt(&object)) {}

  template <class U>
  static U* required(U* object) {
    if (!object) NSRaiseNilReference();
    return object;
  }

  RefPtr<T> handle_;
};

/// Ref(handle) requires a RefPtr to be there.
template <class U>
Ref(const RefPtr<U>&) -> Ref<U>;

/// Handles are equal when they hold the very same object, or none.
///@{
template <class T, class U>
bool operator==(const RefPtr<T>& a, const RefPtr<U>& b) noexcept {
  return a.get() == b.get();
}
template <class T, class U>
bool operator==(const Ref<T>& a, const Ref<U>& b) noexcept {
  return a.get() == b.get();
}
template <class T, class U>
bool operator==(const Ref<T>& a, const RefPtr<U>& b) noexcept {
  return a.get() == b.get();
}
template <class T>
bool operator==(const RefPtr<T>& a, std::nullptr_t) noexcept {
  return a.get() == nullptr;
}
///@}
