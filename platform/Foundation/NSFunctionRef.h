#pragma once

#include <functional>
#include <memory>
#include <type_traits>

#include <Foundation/NSBlock.h>

template <class Signature>
class NSFunctionRef;

/// A type that, apart from references and qualifiers, is not one of the others.
template <class Value, class... Others>
concept NSOtherThan = (!std::same_as<std::remove_cvref_t<Value>, Others> && ...);

/// A parameter type for a callable that the operation calls before it returns and does not keep: anything
/// that std::invoke accepts, or a handle to a block. A null pointer, an empty std::function and a nil block
/// are nil; calling nil raises the invalid-argument exception. A pointer to member may belong to a subclass
/// of the first argument's class; an argument of another class then raises that exception, too. For
/// parameters only: the callable must outlive it.
template <class Result, class... Arguments>
class NSFunctionRef<Result(Arguments...)> {
 public:
  /// Takes nil, or a callable as described above, which is not copied.
  ///@{
  constexpr NSFunctionRef(std::nullptr_t) noexcept {}

  template <NSOtherThan<NSFunctionRef, std::nullptr_t> Callable>
  NSFunctionRef(Callable&& callable) noexcept {
    using Target = std::remove_reference_t<Callable>;
    if (isNil(callable)) return;
    if constexpr (std::is_function_v<Target>)
      function_ = reinterpret_cast<void (*)()>(&callable);
    else
      object_ = std::addressof(callable);
    call_ = &call<Target>;
  }
  ///@}

  /// Whether it is not nil.
  explicit operator bool() const noexcept { return call_ != nullptr; }

  /// Calls the callable and returns its result; exceptions pass through.
  Result operator()(Arguments... arguments) const {
    if (!call_) NSRaiseNilReference();
    return call_(*this, std::forward<Arguments>(arguments)...);
  }

 private:
  template <class Callable>
  static bool isNil(const Callable& callable) noexcept {
    // A lambda without captures can be compared with nullptr, too, but is never nil.
    constexpr bool isLambda = std::is_class_v<Callable> && requires { +callable; };
    if constexpr (!isLambda && !std::is_function_v<Callable> && requires { callable == nullptr; })
      return callable == nullptr;
    return false;
  }

  template <class Target>
  static Result call(const NSFunctionRef& self, Arguments... arguments) {
    if constexpr (std::is_function_v<Target>) {
      return invoke(*reinterpret_cast<Target*>(self.function_), std::forward<Arguments>(arguments)...);
    } else {
      return invoke(*static_cast<Target*>(const_cast<void*>(self.object_)),
                    std::forward<Arguments>(arguments)...);
    }
  }

  template <class Target, class... Values>
  static Result invoke(Target& target, Values&&... values) {
    if constexpr (NSIsHandle<std::remove_const_t<Target>>) {
      return Result(std::invoke(*target, std::forward<Values>(values)...));
    } else if constexpr (std::is_invocable_v<Target&, Values...>) {
      return Result(std::invoke(target, std::forward<Values>(values)...));
    } else {
      static_assert(std::is_member_pointer_v<std::remove_const_t<Target>>,
                    "the callable does not take these arguments");
      return Result(invokeMember(target, std::forward<Values>(values)...));
    }
  }

  template <class Member, class First, class... Rest>
  static decltype(auto) invokeMember(Member member, First&& first, Rest&&... rest) {
    auto* receiver = dynamic_cast<typename NSMemberClass<Member>::type*>(first.get());
    if (!receiver) NSRaiseNilReference();
    return std::invoke(member, receiver, std::forward<Rest>(rest)...);
  }

  Result (*call_)(const NSFunctionRef&, Arguments...) = nullptr;
  const void* object_ = nullptr;
  void (*function_)() = nullptr;
};
