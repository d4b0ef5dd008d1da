#include "Calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>

namespace {

struct Plan {
  int kinds = 0;
  long left = 0;
  Calls::Fate fate = Calls::Fate::fail;
  bool lasts = false;
  bool met = false;
} plan;

template <class Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

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

#define PASS_ON(kind, failure, result, name, parameters, arguments) \
  result name parameters {                                          \
    static const auto real = next<result(*) parameters>(#name);     \
    return Calls::fails(Calls::kind) ? failure : real arguments;    \
  }

PASS_ON(reading, -1, ssize_t, read, (int file, void* to, size_t size), (file, to, size))
PASS_ON(reading, -1, ssize_t, pread64, (int file, void* to, size_t size, off64_t at), (file, to, size, at))
PASS_ON(writing, -1, ssize_t, write, (int file, const void* from, size_t size), (file, from, size))
PASS_ON(writing, -1, ssize_t, pwrite64, (int file, const void* from, size_t size, off64_t at),
        (file, from, size, at))
PASS_ON(writing, -1, ssize_t, sendmsg, (int socket, const msghdr* message, int flags),
        (socket, message, flags))
PASS_ON(writing, -1, int, ftruncate64, (int file, off64_t size) noexcept, (file, size))
PASS_ON(syncing, -1, int, fsync, (int file), (file))
PASS_ON(syncing, -1, int, fdatasync, (int file), (file))
PASS_ON(naming, -1, int, linkat, (int from, const char* old, int to, const char* path, int flags) noexcept,
        (from, old, to, path, flags))
PASS_ON(naming, -1, int, renameat2,
        (int from, const char* old, int to, const char* path, unsigned flags) noexcept,
        (from, old, to, path, flags))
PASS_ON(naming, -1, int, unlinkat, (int folder, const char* path, int flags) noexcept, (folder, path, flags))
PASS_ON(naming, -1, int, mkdirat, (int folder, const char* path, mode_t mode) noexcept, (folder, path, mode))
PASS_ON(opening, -1, int, fchmod, (int file, mode_t mode) noexcept, (file, mode))
PASS_ON(randomness, -1, ssize_t, getrandom, (void* to, size_t size, unsigned flags), (to, size, flags))

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
  return Calls::fails(Calls::opening) ? -1 : real(folder, path, flags, mode);
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
PASS_ON(memory, MAP_FAILED, void*, mmap,
        (void* at, size_t size, int access, int flags, int file, off_t offset) noexcept,
        (at, size, access, flags, file, offset))
#endif
}
#pragma GCC visibility pop
