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
// Every object that is destroyed passes through here: the initial-exec model saves it a call and takes only
// two words of the space that the loader reserves for such variables.
[[gnu::tls_model("initial-exec")]] thread_local Waiting waiting;

// References taken and released in a destructor must not destroy the object a second time.
constexpr std::uintptr_t countDuringDestruction = std::numeric_limits<std::uintptr_t>::max() / 2;

constexpr std::size_t hugePage = std::size_t{2} << 20;

/// Asks for huge pages in the middle of a large block: with small pages, the first touch of each page takes
/// longer than writing to it. This is only a hint, so its result is ignored.
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
  NSException::raise(NSInvalidArgumentException, "%@ has no mutable kind", NSStringFromClass(isa()));
}

void* NSObject::allocateLargeBlock(std::size_t size, std::size_t tail) {
  static_assert(largeTail >= 4 * hugePage);
  if (tail > std::numeric_limits<std::size_t>::max() - size) throw std::bad_alloc();
  void* const block = ::operator new(size + tail);
  preferHugePages(block, size + tail);
  return block;
}

void NSObject::destroy() const noexcept {
  if (waiting.draining) {
    count_.store(reinterpret_cast<std::uintptr_t>(waiting.first), std::memory_order_relaxed);
    waiting.first = this;
    return;
  }
  const auto end = [](const NSObject* object) {
    object->count_.store(countDuringDestruction, std::memory_order_relaxed);
    delete object;
  };
  waiting.draining = true;
  end(this);
  while (const NSObject* object = waiting.first) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the count of a waiting object is a link.
    waiting.first = reinterpret_cast<const NSObject*>(object->count_.load(std::memory_order_relaxed));
    end(object);
  }
  waiting.draining = false;
}
