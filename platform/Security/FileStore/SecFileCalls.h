#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include <Security/SecFailure.h>

// How the file store calls the system: descriptors that close themselves, and errno as a failure.

/// Throws the failure that stands for errno.
[[noreturn]] void secFailByErrno();

/// Throws the failure that stands for errno if the result of a call is negative, otherwise returns it.
template <class Result>
Result secCall(Result result) {
  if (result < 0) secFailByErrno();
  return result;
}

/// A file or folder that is open, or none.
class SecFileDescriptor {
 public:
  SecFileDescriptor() = default;
  explicit SecFileDescriptor(int number) : number_(number) {}
  SecFileDescriptor(SecFileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  SecFileDescriptor& operator=(SecFileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  SecFileDescriptor(const SecFileDescriptor&) = delete;
  SecFileDescriptor& operator=(const SecFileDescriptor&) = delete;
  ~SecFileDescriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int number() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  struct stat status() const {
    struct stat status {};
    secCall(::fstat(number_, &status));
    return status;
  }

 private:
  int number_ = -1;
};
