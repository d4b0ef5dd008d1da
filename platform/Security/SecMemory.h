#pragma once

#include <Foundation/NSExport.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <new>

/// Memory for secrets: left out of core dumps and locked against swapping where the system allows it.
/// Never null for a size above 0; throws std::bad_alloc. Safe from any thread.
NS_EXPORT void* secAllocate(std::size_t size);

/// Overwrites and gives back what secAllocate gave for the same size; null is nothing.
NS_EXPORT void secFree(void* memory, std::size_t size) noexcept;

/// Overwrites memory in a way that no compiler leaves out.
NS_EXPORT void secCleanse(void* memory, std::size_t size) noexcept;

/// Containers of secrets keep them in memory from secAllocate.
template <class Value>
struct SecSecretAllocator {
  /// What the standard library asks of an allocator.
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

/// Containers of what should not linger, such as names of accounts: ordinary memory, overwritten when freed.
template <class Value>
struct SecCleansingAllocator : std::allocator<Value> {
  /// What the standard library asks of an allocator.
  ///@{
  using value_type = Value;
  /// The allocator of another type.
  template <class Other>
  struct rebind {
    using other = SecCleansingAllocator<Other>;  ///< as it is asked for
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
