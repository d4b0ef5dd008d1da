#include "CountedAllocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations{0};

}  // namespace

std::size_t countedAllocations() noexcept { return allocations; }

void* operator new(std::size_t size) {
  ++allocations;
  if (void* block = std::malloc(size)) return block;
  throw std::bad_alloc();
}
// The address sanitizer has one of its own, whose blocks the operators below could not free.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  ++allocations;
  if (void* block = std::aligned_alloc(static_cast<std::size_t>(alignment), size)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
