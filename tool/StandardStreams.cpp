#include "tool/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include "tool/Subcommands.h"

namespace {

[[noreturn]] void fail(const char* what) {
  throw Failure(std::string(what) + ": " + std::strerror(errno));
}

bool isOpen(int descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

ssize_t retried(auto transfer) {
  ssize_t count;
  do count = transfer();
  while (count < 0 && errno == EINTR);
  return count;
}

}  // namespace

void guardStandardStreams() {
  // Read-only also where output is expected: writing there then fails, as it does for a closed stream.
  for (int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (!isOpen(descriptor)) open("/dev/null", O_RDONLY);
  }
  std::signal(SIGPIPE, SIG_IGN);
}

Ref<NSData> readStandardInput() {
  const Ref<NSMutableData> input = NSMutableData::data();
  std::vector<std::byte> block(1 << 16);
  for (;;) {
    const ssize_t count = retried([&] { return read(STDIN_FILENO, block.data(), block.size()); });
    if (count < 0) fail("cannot read the input");
    if (count == 0) return input;
    input->appendBytes(block.data(), static_cast<std::size_t>(count));
  }
}

void writeStandardOutput(std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = retried([&] { return write(STDOUT_FILENO, bytes.data(), bytes.size()); });
    if (count < 0) fail("cannot write the output");
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void writeStandardOutput(std::string_view text) { writeStandardOutput(std::as_bytes(std::span(text))); }
