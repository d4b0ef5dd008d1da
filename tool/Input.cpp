#include "tool/Input.h"

#include <unistd.h>

#include <algorithm>

#include "tool/Failure.h"

namespace {

struct stat statusOf(int descriptor, const std::string& name) {
  struct stat status = {};
  if (fstat(descriptor, &status) != 0) failWithErrno("cannot read {1}"_text(name));
  return status;
}

bool isSame(const timespec& one, const timespec& other) {
  return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

}  // namespace

Input::Input(const std::string& path)
    : name_(path == "-" ? "the input"_text.text() : path),
      file_(path == "-" ? Descriptor() : Descriptor::openForReading(path)),
      before_(statusOf(number(), name_)),
      start_(std::max<off_t>(lseek(number(), 0, SEEK_CUR), 0)),
      piece_(pieceLength) {}

std::optional<std::size_t> Input::length() const {
  if (!isRegular()) return std::nullopt;
  return static_cast<std::size_t>(std::max<off_t>(before_.st_size - start_, 0));
}

void Input::requireOtherOutput() const {
  struct stat output = {};
  if (isRegular() && fstat(STDOUT_FILENO, &output) == 0 && output.st_dev == before_.st_dev &&
      output.st_ino == before_.st_ino)
    throw Failure("{1} is also the output"_text(name_));
}

std::span<const std::byte> Input::read() { return readPiece(number(), piece_, name_); }

void Input::rewind() {
  requireUnchanged();
  if (lseek(number(), start_, SEEK_SET) < 0) failWithErrno("cannot read {1} again"_text(name_));
}

void Input::requireUnchanged() const {
  // The time of the last change of state also changes with the number of the file's names.
  const struct stat now = statusOf(number(), name_);
  if (now.st_size != before_.st_size || !isSame(now.st_mtim, before_.st_mtim) ||
      !isSame(now.st_ctim, before_.st_ctim))
    throw Failure("{1} was changed or removed while it was being read"_text(name_));
}
