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

/// What a block can be made of: anything callable with the signature, other than a handle or nil.
template <class Callable, class Signature>
concept NSBlockCallable = !NSIsHandle<std::remove_cvref_t<Callable>> &&
                          !std::same_as<std::remove_cvref_t<Callable>, std::nullptr_t> &&
                          std::constructible_from<std::function<Signature>, Callable>;

/// A callable that is kept, listed or tested for absence. It is made implicitly where a NSRefPtr to one is
/// wanted, from anything callable; an empty std::function or a null pointer makes an absent one. Whether
/// it may be called on several threads at once is the callable's affair.
template <class Result, class... Arguments>
class [[gnu::visibility("default")]] NSBlock<Result(Arguments...)>
    : public NSObject::Subclass<NSBlock<Result(Arguments...)>> {
 public:
  /// Keeps the callable, which must not be empty: `implicitly` makes an absent block of such a one.
  ///@{
  explicit NSBlock(std::function<Result(Arguments...)> callable) : callable_(std::move(callable)) {}
  template <NSBlockCallable<Result(Arguments...)> Callable>
  static NSRefPtr<NSBlock> implicitly(Callable && callable) {
    std::function<Result(Arguments...)> held(std::forward<Callable>(callable));
    if (!held) return nullptr;
    return NSBlock::alloc(std::move(held));
  }
  ///@}

  /// Calls the callable and answers its result; what it throws passes through.
  Result operator()(Arguments... arguments) const { return callable_(std::forward<Arguments>(arguments)...); }

  /// A block is fixed: another reference.
  NSRef<NSBlock> copy() const { return const_cast<NSBlock&>(*this); }

 private:
  std::function<Result(Arguments...)> callable_;
};
