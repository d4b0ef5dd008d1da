#include "tool/Descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "tool/Failure.h"

namespace {

ssize_t retried(auto transfer) {
  ssize_t count;
  do count = transfer();
  while (count < 0 && errno == EINTR);
  return count;
}

}  // namespace

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

Descriptor Descriptor::openForReading(const std::string& path) {
  Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (!file) failWithErrno("cannot read {1}"_text(path));
  return file;
}

std::span<const std::byte> readPiece(int descriptor, std::span<std::byte> buffer, const std::string& name) {
  const ssize_t count = retried([&] { return read(descriptor, buffer.data(), buffer.size()); });
  if (count < 0) failWithErrno("cannot read {1}"_text(name));
  return buffer.first(static_cast<std::size_t>(count));
}

bool writeFully(int descriptor, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = retried([&] { return write(descriptor, bytes.data(), bytes.size()); });
    if (count < 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}
