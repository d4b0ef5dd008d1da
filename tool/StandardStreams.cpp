#include "tool/StandardStreams.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "tool/Descriptor.h"
#include "tool/Failure.h"

namespace {

bool isOpen(int descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

NSRef<NSData> readSecret(int descriptor, const std::string& name) {
  const NSRef<NSMutableData> content = NSMutableData::data();
  content->setHoldsSecret(true);
  std::array<std::byte, 1 << 16> block;
  for (;;) {
    const auto piece = readPiece(descriptor, block, name);
    if (piece.empty()) return content;
    content->appendBytes(piece.data(), piece.size());
    explicit_bzero(block.data(), piece.size());
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

NSRef<NSData> readSecretInput() {
  const NSRef<NSData> input = readSecret(STDIN_FILENO, "the input"_text.text());
  const auto content = input->bytes();
  if (content.empty() || content.back() != std::byte{'\n'}) return input;
  return NSData::dataWithBytes(content.first(content.size() - 1), true);
}

NSRef<NSData> readSecretFile(const std::string& path) {
  return readSecret(Descriptor::openForReading(path).number(), path);
}

void writeStandardOutput(std::span<const std::byte> bytes) {
  if (writeFully(STDOUT_FILENO, bytes)) return;
  if (errno == EPIPE) throw OutputClosed();
  failWithErrno("cannot write the output"_text);
}

void writeStandardOutput(std::string_view text) { writeStandardOutput(std::as_bytes(std::span(text))); }

void endStandardOutput() {
  // Any descriptor of the file will do: the tool's own stays open.
  const int copy = dup(STDOUT_FILENO);
  if (copy >= 0 && close(copy) != 0) failWithErrno("cannot write the output"_text);
}
