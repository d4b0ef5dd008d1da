#pragma once

#include <Foundation/NSExport.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <new>

/// Allocates memory for secrets, excluded from core dumps and locked against swapping where the system allows
/// it. Never returns null for a size above 0; throws std::bad_alloc. Safe from any thread.
NS_EXPORT void* secAllocate(std::size_t size);

/// Overwrites and frees memory that secAllocate returned for the same size. Does nothing for null.
NS_EXPORT void secFree(void* memory, std::size_t size) noexcept;

/// Overwrites memory in a way that no compiler optimises away.
NS_EXPORT void secCleanse(void* memory, std::size_t size) noexcept;

/// The allocator of containers that hold secrets; it takes memory from secAllocate.
template <class Value>
struct SecSecretAllocator {
  /// What the standard library requires of an allocator.
  ///@{
  using value_type = Value;

  SecSecretAllocator() = default;
  template <class Other>
  SecSecretAllocator(const SecSecretAllocator<Other>&) noexcept {}

  Value* allocate(std::size_t count) {
    if (count > (std::numeric_limits<std::size_t>::max)() / sizeof(Value)) throw std::bad_array_new_length();
    return static_cast<Value*>(secAllocate(count * sizeof(Value)));
  }
  void deallocate(Value* memory, std::size_t count) noexcept { secFree(memory, count * sizeof(Value)); }

  friend bool operator==(SecSecretAllocator, SecSecretAllocator) { return true; }
  ///@}
};

/// The allocator of containers whose content should not linger, such as account names: ordinary memory,
/// overwritten when it is freed.
template <class Value>
struct SecCleansingAllocator : std::allocator<Value> {
  /// What the standard library requires of an allocator.
  ///@{
  using value_type = Value;
  /// The allocator of another type.
  template <class Other>
  struct rebind {
    using other = SecCleansingAllocator<Other>;  ///< that allocator
  };

  SecCleansingAllocator() = default;
  template <class Other>
  SecCleansingAllocator(const SecCleansingAllocator<Other>&) noexcept {}

  void deallocate(Value* memory, std::size_t count) noexcept {
    secCleanse(memory, count * sizeof(Value));
    std::allocator<Value>::deallocate(memory, count);
  }
  ///@}
};
