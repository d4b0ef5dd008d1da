#include <Security/SecMemory.h>

// libcrypto's macros for memory would put the path of this file into the library.
#define OPENSSL_NO_FILENAMES
#include <openssl/crypto.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::size_t arenaSize = std::size_t{128} << 10;
constexpr std::size_t arenaBlock = 32;
constexpr std::size_t largestInArena = 4096;

/// A process has one arena; if the host has set it up first, that one is used. A block of it is never freed,
/// so that libcrypto's exit handler does not remove it while a host's exit handlers still need it.
bool hasArena() {
  static const bool available =
      (CRYPTO_secure_malloc_initialized() == 1 || CRYPTO_secure_malloc_init(arenaSize, arenaBlock) != 0) &&
      OPENSSL_secure_malloc(arenaBlock) != nullptr;
  return available;
}

std::size_t wholePages(std::size_t size) {
  static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  if (size > std::numeric_limits<std::size_t>::max() - page) throw std::bad_alloc();
  return (size + page - 1) / page * page;
}

void* map(std::size_t size) {
  void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  ::madvise(memory, size, MADV_DONTDUMP);
  // Best effort: the system limits how much one user may lock.
  static_cast<void>(::mlock(memory, size));
  return memory;
}

}  // namespace

void* secAllocate(std::size_t size) {
  if (size <= largestInArena && hasArena())
    if (void* const memory = OPENSSL_secure_malloc(size)) return memory;
  return map(wholePages(size));
}

void secFree(void* memory, std::size_t size) noexcept {
  if (!memory) return;
  secCleanse(memory, size);
  if (CRYPTO_secure_allocated(memory))
    OPENSSL_secure_free(memory);
  else
    ::munmap(memory, wholePages(size));
}

void secCleanse(void* memory, std::size_t size) noexcept { OPENSSL_cleanse(memory, size); }
