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

/// What is known about the equality of an object without calling isEqual.
enum class NSEquality {
  identity,  ///< equal only to itself, whatever its hash: looked up by its address
  hashed,    ///< its class says that equal objects have equal hashes: looked up by its hash
  custom,    ///< nothing is known: compared with one object after another
};

/// Memory behind an object, in the same block.
struct NSTail {
  std::byte* start;  ///< the first byte, directly behind the object
  std::size_t size;  ///< in bytes
};

/// The root of all classes. An object lives on the heap, is shared through NSRef and NSRefPtr, and is
/// destroyed when the last of them is released, which may happen on any thread. Releasing a chain of any
/// length takes a constant amount of stack: what an object releases in its destructor is destroyed after it.
class NS_EXPORT NSObject {
 public:
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;

  /// The base to derive a class from: class Shape : public NSObject::Subclass<Shape>.
  template <class Derived>
  using Subclass = NSObjectLayer<Derived, NSObject>;

  /// The class whose isEqual agrees with its hash: equal objects have equal hashes. A class that overrides
  /// both so that they agree names itself here; see NSEquality.
  using HashAgreesWithEquality = NSObject;

  /// Returns the class itself, as an object.
  static NSClass& classObject();

  /// Returns the object's class.
  virtual NSClass& isa() const;
  /// Whether the object's class is the given one or a subclass of it.
  bool isKindOfClass(const NSClass& other) const noexcept;

  /// Returns whether the object equals another, which may be nil. By default, whether it is the same object.
  virtual bool isEqual(const NSRefPtr<NSObject>& other) const;
  /// Returns the hash by which sets and dictionaries look an object up: it must not change while the object
  /// is in one, and equal objects are found only if their hashes are equal. By default, made from the
  /// address. Each process may return another one, so that nobody can prepare keys that collide.
  virtual std::size_t hash() const;
  /// Returns what is known about isEqual; the layer of each class overrides this.
  virtual NSEquality equality() const { return NSEquality::identity; }

  /// Returns a string for people; by default, the name of the class and the address.
  virtual NSRef<NSString> description() const;

  /// Returns an immutable object with the same content: another reference to an immutable object, a copy of a
  /// mutable one.
  NSRef<NSObject> copy() const { return copyObject(); }
  /// Returns a new mutable copy. Raises the invalid-argument exception for a class that has no mutable kind.
  NSRef<NSObject> mutableCopy() const { return mutableCopyObject(); }

  /// Adds or removes a reference; removing the last one destroys the object. For the handles alone: hosts
  /// hold NSRef and NSRefPtr. Safe from any thread.
  ///@{
  void retain() const noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
  void release() const noexcept {
    // Nothing can race with the only reference: that saves short-lived objects an atomic read-modify-write.
    if (count_.load(std::memory_order_acquire) == 1 || count_.fetch_sub(1, std::memory_order_acq_rel) == 1)
      destroy();
  }
  ///@}

  /// Frees a block, including the tail behind the object.
  static void operator delete(void* block) noexcept { ::operator delete(block); }

 protected:
  NSObject() = default;
  virtual ~NSObject() = default;

  /// Returns the result of copy and of mutableCopy; a class with an immutable or a mutable kind overrides
  /// these. By default, returns another reference, and raises the invalid-argument exception.
  ///@{
  virtual NSRef<NSObject> copyObject() const;
  virtual NSRef<NSObject> mutableCopyObject() const;
  ///@}

  /// Allocates a block for an object of `size` bytes and `tail` bytes behind it; throws std::bad_alloc.
  static void* allocateBlock(std::size_t size, std::size_t tail) {
    return tail < largeTail ? ::operator new(size + tail) : allocateLargeBlock(size, tail);
  }

 private:
  template <class Self, class Base>
  friend class NSObjectLayer;
  friend class NSClass;

  static constexpr std::size_t largeTail = std::size_t{8} << 20;
  static void* allocateLargeBlock(std::size_t size, std::size_t tail);

  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void* operator new(std::size_t, void* place) noexcept { return place; }

  /// Only allocation implements this, so that objects outside the heap do not compile.
  virtual void livesOnTheHeap() const = 0;

  void destroy() const noexcept;

  // The number of references; for an object that waits to be destroyed, the next one that waits.
  mutable std::atomic<std::uintptr_t> count_{1};
};

/// Returns whether two objects are equal by value, as isEqual of the first says. Handles are compared by
/// identity: `*a == *b` compares the objects, `a == b` asks whether they are the same one.
inline bool operator==(const NSObject& a, const NSObject& b) {
  return a.isEqual(NSRefPtr<NSObject>(const_cast<NSObject*>(&b)));
}

/// For containers of the standard library whose keys are handles, none of them nil, compared by value, as in
/// std::unordered_map<NSRef<NSString>, int, NSValueHash, NSValueEqual>.
struct NSValueHash {
  /// Returns the object's hash.
  template <class Handle>
  std::size_t operator()(const Handle& object) const {
    return object->hash();
  }
};
/// The equality that goes with NSValueHash.
struct NSValueEqual {
  /// Returns whether the objects are equal.
  template <class Handle, class Other>
  bool operator()(const Handle& a, const Other& b) const {
    return *a == *b;
  }
};

/// The class that allocation instantiates.
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

/// Whether the isEqual and hash of a class can be named, which overloads prevent.
template <class Self>
concept NSHasOneEquality = requires {
  &Self::isEqual;
  &Self::hash;
};

/// The layer between a class and its base that supplies what depends on the class itself: its class object,
/// its allocation, and what is known about its equality.
template <class Self, class Base>
class [[gnu::visibility("default")]] NSObjectLayer : public Base {
 public:
  /// The base to derive a subclass of Self from.
  template <class Derived>
  using Subclass = NSObjectLayer<Derived, Self>;

  /// Returns the class Self, as an object; there is one in the process, whichever shared object asks for it.
  static NSClass& classObject();
  /// Returns the class Self; the layer of a subclass overrides this.
  NSClass& isa() const override { return classObject(); }
  /// Determined at compile time, from what Self declares about its isEqual and hash.
  NSEquality equality() const override { return equalityOfSelf(); }

  /// Returns a new object whose initialiser has not run. Hosts use factories, which run it.
  template <class... Arguments>
  static NSRef<Self> alloc(Arguments && ... arguments) {
    static_assert(std::is_base_of_v<NSObjectLayer, Self>, "a class derives from Base::Subclass<itself>");
    return NSRef<Self>::adopt(*new NSAllocated<Self>(std::forward<Arguments>(arguments)...));
  }

 protected:
  using Base::Base;

  /// As alloc, with `tail` bytes behind the object, which the constructor receives as its first argument, an
  /// NSTail.
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

  // A member function's type names the class that declares it, so an override is visible at compile time.
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
