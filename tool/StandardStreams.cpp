#include "tool/StandardStreams.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "tool/Failure.h"

namespace {

[[noreturn]] void fail(const std::string& what) { throw Failure(what + ": " + std::strerror(errno)); }

bool isOpen(int descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

ssize_t retried(auto transfer) {
  ssize_t count;
  do count = transfer();
  while (count < 0 && errno == EINTR);
  return count;
}

NSRef<NSData> readAll(int descriptor, bool secret, const std::string& name) {
  const NSRef<NSMutableData> content = NSMutableData::data();
  content->setHoldsSecret(secret);
  std::array<std::byte, 1 << 16> block;
  for (;;) {
    const ssize_t count = retried([&] { return read(descriptor, block.data(), block.size()); });
    if (count < 0) fail("cannot read " + name);
    if (count == 0) return content;
    content->appendBytes(block.data(), static_cast<std::size_t>(count));
    if (secret) explicit_bzero(block.data(), block.size());
  }
}

}  // namespace

void guardStandardStreams() {
  // Read-only even where output is expected: writing to it then fails, as it does for a closed stream.
  for (int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (!isOpen(descriptor)) open("/dev/null", O_RDONLY);
  }
  for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
}

void guardSecrets() {
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
  prctl(PR_SET_DUMPABLE, 0);
}

NSRef<NSData> readStandardInput() { return readAll(STDIN_FILENO, false, "the input"); }

NSRef<NSData> readSecretInput() {
  const NSRef<NSData> input = readAll(STDIN_FILENO, true, "the input");
  const auto content = input->bytes();
  if (content.empty() || content.back() != std::byte{'\n'}) return input;
  return NSData::dataWithBytes(content.first(content.size() - 1), true);
}

NSRef<NSData> readSecretFile(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) fail("cannot read " + path);
  const NSRef<NSData> content = readAll(descriptor, true, path);
  close(descriptor);
  return content;
}

void writeStandardOutput(std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = retried([&] { return write(STDOUT_FILENO, bytes.data(), bytes.size()); });
    if (count < 0) fail("cannot write the output");
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void writeStandardOutput(std::string_view text) { writeStandardOutput(std::as_bytes(std::span(text))); }
