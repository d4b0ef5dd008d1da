#include "Calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>

namespace {

struct Plan {
  int kinds = 0;
  long left = 0;
  Calls::Fate fate = Calls::Fate::fail;
  bool lasts = false;
  bool met = false;
} plan;

std::vector<Calls::Change>* recorded = nullptr;
int keys = -1;

template <class Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

void note(bool done, Calls::Change::What what, int file, std::uint64_t number = 0, std::string bytes = {}) {
  struct stat status {};
  if (done && recorded && ::fstat(file, &status) == 0)
    recorded->push_back({what, status.st_ino, number, std::move(bytes)});
}

void noteWrite(ssize_t size, int file, const void* from, off64_t at) {
  if (size > 0 && recorded)
    note(true, Calls::Change::written, file, static_cast<std::uint64_t>(at),
         {static_cast<const char*>(from), static_cast<std::size_t>(size)});
}

void noteName(bool done, int folder, const char* name) {
  struct stat status {};
  if (!done || !recorded) return;
  const bool exists = ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0;
  note(true, Calls::Change::named, folder, exists ? status.st_ino : 0, name);
}

}  // namespace

void Calls::record(std::vector<Change>* changes) { recorded = changes; }

void Calls::copyKeysTo(int file) { keys = file; }

void Calls::noteKeys(const void* bytes, std::size_t size) {
  constexpr std::size_t keySize = 32;
  const auto* key = static_cast<const unsigned char*>(bytes);
  for (; keys >= 0 && key && size >= keySize; key += keySize, size -= keySize)
    if (::syscall(SYS_write, keys, key, keySize) < 0) ::abort();
}

void Calls::arm(int kinds, long nth, Fate fate, bool lasts) { plan = {kinds, nth, fate, lasts, false}; }

bool Calls::disarm() {
  const bool met = plan.met;
  plan = {};
  return met;
}

bool Calls::fails(Kind kind) noexcept {
  if (!(plan.kinds & kind) || (--plan.left > 0) || (plan.left < 0 && !plan.lasts)) return false;
  plan.met = true;
  if (plan.fate == Fate::kill) ::raise(SIGKILL);
  if (plan.fate == Fate::stop) ::raise(SIGSTOP);
  if (plan.fate == Fate::stop) return false;
  errno = kind == memory ? ENOMEM : plan.fate == Fate::fill ? ENOSPC : EIO;
  return true;
}

#pragma GCC visibility push(default)
extern "C" {

// `after` sees what the call returned as `done`.
#define PASS_ON(result, name, parameters, arguments, before, after) \
  result name parameters {                                          \
    static const auto real = next<result(*) parameters>(#name);     \
    before;                                                         \
    result done = real arguments;                                   \
    after;                                                          \
    return done;                                                    \
  }

#define FAIL(kind, failure) \
  if (Calls::fails(Calls::kind)) return failure

PASS_ON(ssize_t, read, (int file, void* to, size_t size), (file, to, size), FAIL(reading, -1), )
PASS_ON(ssize_t, pread64, (int file, void* to, size_t size, off64_t at), (file, to, size, at),
        FAIL(reading, -1), )
PASS_ON(ssize_t, write, (int file, const void* from, size_t size), (file, from, size), FAIL(writing, -1),
        noteWrite(done, file, from, recorded ? ::lseek64(file, 0, SEEK_CUR) - done : 0))
PASS_ON(ssize_t, pwrite64, (int file, const void* from, size_t size, off64_t at), (file, from, size, at),
        FAIL(writing, -1), noteWrite(done, file, from, at))
PASS_ON(ssize_t, sendmsg, (int socket, const msghdr* message, int flags), (socket, message, flags),
        FAIL(writing, -1), )
PASS_ON(int, ftruncate64, (int file, off64_t size) noexcept, (file, size), FAIL(writing, -1),
        note(done == 0, Calls::Change::cut, file, static_cast<std::uint64_t>(size)))
PASS_ON(int, fsync, (int file), (file), FAIL(syncing, -1), note(done == 0, Calls::Change::synced, file))
PASS_ON(int, fdatasync, (int file), (file), FAIL(syncing, -1), note(done == 0, Calls::Change::synced, file))
PASS_ON(int, linkat, (int from, const char* old, int to, const char* path, int flags) noexcept,
        (from, old, to, path, flags), FAIL(naming, -1), noteName(done == 0, to, path))
PASS_ON(int, renameat2, (int from, const char* old, int to, const char* path, unsigned flags) noexcept,
        (from, old, to, path, flags), FAIL(naming, -1),
        (noteName(done == 0, to, path), noteName(done == 0, from, old)))
PASS_ON(int, unlinkat, (int folder, const char* path, int flags) noexcept, (folder, path, flags),
        FAIL(naming, -1), noteName(done == 0, folder, path))
PASS_ON(int, mkdirat, (int folder, const char* path, mode_t mode) noexcept, (folder, path, mode),
        FAIL(naming, -1), noteName(done == 0, folder, path))
PASS_ON(int, fchmod, (int file, mode_t mode) noexcept, (file, mode), FAIL(opening, -1), )
PASS_ON(ssize_t, getrandom, (void* to, size_t size, unsigned flags), (to, size, flags), FAIL(randomness, -1),
        Calls::noteKeys(to, size))

#define OPEN(name)                                                              \
  int name(const char* path, int flags, ...) {                                  \
    static const auto real = next<int (*)(const char*, int, ...)>(#name);       \
    va_list rest;                                                               \
    va_start(rest, flags);                                                      \
    const auto mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(rest, mode_t) : 0; \
    va_end(rest);                                                               \
    return Calls::fails(Calls::opening) ? -1 : real(path, flags, mode);         \
  }

OPEN(open)
OPEN(open64)

int openat(int folder, const char* path, int flags, ...) {
  static const auto real = next<int (*)(int, const char*, int, ...)>("openat");
  va_list rest;
  va_start(rest, flags);
  const auto mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  if (Calls::fails(Calls::opening)) return -1;
  const int file = real(folder, path, flags, mode);
  noteName(file >= 0 && (flags & O_CREAT), folder, path);
  return file;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* old, size_t size);

void* malloc(size_t size) { return Calls::fails(Calls::memory) ? nullptr : __libc_malloc(size); }
void* calloc(size_t count, size_t size) {
  return Calls::fails(Calls::memory) ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* old, size_t size) {
  return Calls::fails(Calls::memory) ? nullptr : __libc_realloc(old, size);
}
PASS_ON(void*, mmap, (void* at, size_t size, int access, int flags, int file, off_t offset) noexcept,
        (at, size, access, flags, file, offset), FAIL(memory, MAP_FAILED), )
#endif
}
#pragma GCC visibility pop
