#pragma once

#include <concepts>
#include <functional>
#include <type_traits>

#include <Foundation/NSObject.h>

template <class Signature>
class NSBlock;

template <class Value>
inline constexpr bool NSIsHandle = false;
template <class T>
inline constexpr bool NSIsHandle<NSRef<T>> = true;
template <class T>
inline constexpr bool NSIsHandle<NSRefPtr<T>> = true;

/// What a block can be created from: anything callable with the signature, other than a handle or nil.
template <class Callable, class Signature>
concept NSBlockCallable = !NSIsHandle<std::remove_cvref_t<Callable>> &&
                          !std::same_as<std::remove_cvref_t<Callable>, std::nullptr_t> &&
                          std::constructible_from<std::function<Signature>, Callable>;

/// A callable that can be kept, put into a collection or compared with nil. Anything callable converts
/// implicitly to an NSRefPtr to a block; an empty std::function or a null pointer converts to nil. Whether a
/// block may be called on several threads at once depends on the callable.
template <class Result, class... Arguments>
class [[gnu::visibility("default")]] NSBlock<Result(Arguments...)>
    : public NSObject::Subclass<NSBlock<Result(Arguments...)>> {
 public:
  /// Keeps the callable, which must not be empty; `implicitly` returns nil for an empty one.
  ///@{
  explicit NSBlock(std::function<Result(Arguments...)> callable, bool hasState = true)
      : callable_(std::move(callable)), hasState_(hasState) {}
  template <NSBlockCallable<Result(Arguments...)> Callable>
  static NSRefPtr<NSBlock> implicitly(Callable && callable) {
    using Held = std::decay_t<Callable>;
    std::function<Result(Arguments...)> held(std::forward<Callable>(callable));
    if (!held) return nullptr;
    return NSBlock::alloc(std::move(held), std::is_class_v<Held> && !std::is_empty_v<Held>);
  }
  ///@}

  /// Calls the callable and returns its result; exceptions pass through.
  Result operator()(Arguments... arguments) const { return callable_(std::forward<Arguments>(arguments)...); }

  /// Returns another reference, because a block is immutable.
  NSRef<NSBlock> copy() const { return const_cast<NSBlock&>(*this); }

  /// Returns a block with a copy of the callable, so that neither sees changes of the other's state; the
  /// block itself if the callable has no state, as a function or a lambda without captures.
  NSRef<NSBlock> duplicate() const {
    if (!hasState_) return copy();
    return NSBlock::alloc(callable_);
  }

 private:
  std::function<Result(Arguments...)> callable_;
  bool hasState_;
};
