#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

#include <Foundation/NSRef.h>

class NSClass;
class NSObject;
class NSString;

template <class Self, class Base>
class NSObjectLayer;

/// What is known about the equality of an object without asking it.
enum class NSEquality {
  identity,  ///< equal only to itself, whatever its hash: looked up by its address
  hashed,    ///< its class says that equal objects have equal hashes: looked up by its hash
  custom,    ///< nothing is known: compared with one object after another
};

/// Memory behind an object, in the same block.
struct NSTail {
  std::byte* start;  ///< the first byte, just behind the object
  std::size_t size;  ///< in bytes
};

/// The root of all classes. An object lives on the heap, is shared through NSRef and NSRefPtr and let go of
/// with the last of them, which may happen on any thread. Letting go of a chain of any length takes a
/// fixed amount of stack: what an object lets go of in its destructor is destroyed after it.
class NS_EXPORT NSObject {
 public:
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;

  /// The base to derive a class from: class Shape : public NSObject::Subclass<Shape>.
  template <class Derived>
  using Subclass = NSObjectLayer<Derived, NSObject>;

  /// The class whose isEqual agrees with its hash: equal objects, equal hashes. A class with an isEqual
  /// and a hash of its own that agree names itself here; see NSEquality.
  using HashAgreesWithEquality = NSObject;

  /// The class itself, as an object.
  static NSClass& classObject();

  /// The class that the object was made of.
  virtual NSClass& isa() const;
  /// Whether it was made of the class or of one below it.
  bool isKindOfClass(const NSClass& other) const noexcept;

  /// Whether the object equals another, which may be absent; here, whether it is the same one.
  virtual bool isEqual(const NSRefPtr<NSObject>& other) const;
  /// What sets and maps look an object up by: there, it must not change, and equal objects are found only by
  /// the same one. Here, made of the address.
  virtual std::size_t hash() const;
  /// What is known of isEqual; each class's layer answers this.
  virtual NSEquality equality() const { return NSEquality::identity; }

  /// A text for people; here, the name of the class and the address.
  virtual NSRef<NSString> description() const;

  /// A fixed object with the same content: of a fixed object another reference, of a growable one a copy.
  NSRef<NSObject> copy() const { return copyObject(); }
  /// A new growable object. Raises the invalid-argument exception for a class that has no growable kind.
  NSRef<NSObject> mutableCopy() const { return mutableCopyObject(); }

  /// Add a reference and take one away, the last one with the object. For the handles alone: hosts hold NSRef
  /// and NSRefPtr. Safe from any thread.
  ///@{
  void retain() const noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
  void release() const noexcept {
    // The only reference has nobody to race with: that saves short-lived objects an interlocked operation.
    if (count_.load(std::memory_order_acquire) == 1 || count_.fetch_sub(1, std::memory_order_acq_rel) == 1)
      letGo();
  }
  ///@}

  /// Gives back a block, with what is behind the object.
  static void operator delete(void* block) noexcept { ::operator delete(block); }

 protected:
  NSObject() = default;
  virtual ~NSObject() = default;

  /// What copy and mutableCopy answer; a class with a fixed or growable kind overrides them. Here, another
  /// reference, and the invalid-argument exception.
  ///@{
  virtual NSRef<NSObject> copyObject() const;
  virtual NSRef<NSObject> mutableCopyObject() const;
  ///@}

  /// A block for an object of `size` bytes and `tail` bytes behind it; throws std::bad_alloc.
  static void* allocateBlock(std::size_t size, std::size_t tail);

 private:
  template <class Self, class Base>
  friend class NSObjectLayer;
  friend class NSClass;

  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void* operator new(std::size_t, void* place) noexcept { return place; }

  /// Only allocation gives this a body, so that objects outside the heap do not compile.
  virtual void livesOnTheHeap() const = 0;

  void letGo() const noexcept;

  // The number of references; of an object that waits to be destroyed, the next one that waits.
  mutable std::atomic<std::uintptr_t> count_{1};
};

/// What allocation makes of a class.
template <class Self>
class NSAllocated final : public Self {
 public:
  template <class... Arguments>
  explicit NSAllocated(Arguments&&... arguments) : Self(std::forward<Arguments>(arguments)...) {}

 private:
  void livesOnTheHeap() const override {}
};

template <class Member>
struct NSMemberClass;
template <class Declaring, class Type>
struct NSMemberClass<Type Declaring::*> {
  using type = Declaring;
};

/// Whether a class's isEqual and hash can be named, which overloads of theirs prevent.
template <class Self>
concept NSHasOneEquality = requires {
  &Self::isEqual;
  &Self::hash;
};

/// The layer between a class and its base that supplies what depends on the class itself: its class
/// object, its allocation, and what can be known of its equality.
template <class Self, class Base>
class [[gnu::visibility("default")]] NSObjectLayer : public Base {
 public:
  /// The base to derive a class below Self from.
  template <class Derived>
  using Subclass = NSObjectLayer<Derived, Self>;

  /// The class Self, as an object; one in the process, whichever shared object asks.
  static NSClass& classObject();
  /// Self, or what a class below it answers.
  NSClass& isa() const override { return classObject(); }
  /// Found when compiling, from what Self says of its isEqual and hash.
  NSEquality equality() const override { return equalityOfSelf(); }

  /// A new object, before its initialiser ran. Hosts use factories, which run it.
  template <class... Arguments>
  static NSRef<Self> alloc(Arguments && ... arguments) {
    static_assert(std::is_base_of_v<NSObjectLayer, Self>, "a class derives from Base::Subclass<itself>");
    return NSRef<Self>::adopt(*new NSAllocated<Self>(std::forward<Arguments>(arguments)...));
  }

 protected:
  using Base::Base;

  /// As alloc, with `tail` bytes behind the object; the constructor gets the place of them first.
  template <class... Arguments>
  static NSRef<Self> allocWithTail(std::size_t tail, Arguments && ... arguments) {
    using Allocated = NSAllocated<Self>;
    void* block = NSObject::allocateBlock(sizeof(Allocated), tail);
    const NSTail place{static_cast<std::byte*>(block) + sizeof(Allocated), tail};
    try {
      return NSRef<Self>::adopt(*new (block) Allocated(place, std::forward<Arguments>(arguments)...));
    } catch (...) {
      NSObject::operator delete(block);
      throw;
    }
  }

 private:
  template <class Member>
  using Declaring = typename NSMemberClass<Member>::type;

  // A member function's type names the class that declares it, so an override is seen when compiling.
  static constexpr NSEquality equalityOfSelf() {
    if constexpr (NSHasOneEquality<Self>) {
      using Equality = Declaring<decltype(&Self::isEqual)>;
      if constexpr (std::is_same_v<Equality, NSObject>) return NSEquality::identity;
      using Hash = Declaring<decltype(&Self::hash)>;
      using Agreed = typename Self::HashAgreesWithEquality;
      if constexpr (std::is_same_v<Equality, Agreed> && std::is_same_v<Hash, Agreed>)
        return NSEquality::hashed;
    }
    return NSEquality::custom;
  }
};

#include <Foundation/NSClass.h>
