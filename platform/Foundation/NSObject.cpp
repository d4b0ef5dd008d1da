#include <Foundation/NSObject.h>

#include <sys/mman.h>

#include <cstdio>
#include <limits>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

namespace {

// Objects of this thread that wait to be destroyed, linked through their counts.
struct Waiting {
  const NSObject* first = nullptr;
  bool draining = false;
};
// Every object that ends passes here: a fixed place saves it a call, and two words of the room that the
// loader keeps for such places are little.
[[gnu::tls_model("initial-exec")]] thread_local Waiting waiting;

// References taken and let go of in a destructor must not end the object a second time.
constexpr std::uintptr_t countOfTheDying = std::numeric_limits<std::uintptr_t>::max() / 2;

constexpr std::size_t hugePage = std::size_t{2} << 20;

/// Asks for large pages in the middle of a large block: with small ones, the first touch of every page
/// takes longer than what is written to it. Only a wish, so what becomes of it is nobody's matter.
void preferHugePages(void* block, std::size_t size) {
  const auto start = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t from = (start + hugePage - 1) / hugePage * hugePage;
  const std::uintptr_t to = (start + size) / hugePage * hugePage;
  madvise(static_cast<char*>(block) + (from - start), to - from, MADV_HUGEPAGE);
}

}  // namespace

void NSRaiseNilReference() {
  NSException::raise(NSInvalidArgumentException, "nil where an object is required");
}

NSClass& NSObject::classObject() {
  static NSClass& root = NSClass::ofType(typeid(NSObject), nullptr);
  return root;
}

NSClass& NSObject::isa() const { return classObject(); }

bool NSObject::isKindOfClass(const NSClass& other) const noexcept { return isa().isSubclassOfClass(other); }

bool NSObject::isEqual(const NSRefPtr<NSObject>& other) const { return this == other.get(); }

std::size_t NSObject::hash() const { return reinterpret_cast<std::uintptr_t>(this) / alignof(NSObject); }

NSRef<NSString> NSObject::description() const {
  char address[2 + 2 * sizeof(void*) + 1];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(this));
  return NSString::stringWithFormat("<%@: %@>", NSStringFromClass(isa()),
                                    NSRef(NSString::stringWithUTF8String(address)));
}

NSRef<NSObject> NSObject::copyObject() const { return const_cast<NSObject&>(*this); }

NSRef<NSObject> NSObject::mutableCopyObject() const {
  NSException::raise(NSInvalidArgumentException, "%@ has no growable kind", NSStringFromClass(isa()));
}

void* NSObject::allocateBlock(std::size_t size, std::size_t tail) {
  if (tail > std::numeric_limits<std::size_t>::max() - size) throw std::bad_alloc();
  void* const block = ::operator new(size + tail);
  if (tail >= 4 * hugePage) preferHugePages(block, size + tail);
  return block;
}

void NSObject::letGo() const noexcept {
  count_.store(reinterpret_cast<std::uintptr_t>(waiting.first), std::memory_order_relaxed);
  waiting.first = this;
  if (waiting.draining) return;
  waiting.draining = true;
  while (const NSObject* object = waiting.first) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the count of the waiting is a link.
    waiting.first = reinterpret_cast<const NSObject*>(object->count_.load(std::memory_order_relaxed));
    object->count_.store(countOfTheDying, std::memory_order_relaxed);
    delete object;
  }
  waiting.draining = false;
}
