#include <Security/Crypto/SecRandom.h>

#include <sys/random.h>

#include <cerrno>

#include <Security/SecFailure.h>

void secFillRandom(std::span<std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::getrandom(bytes.data(), bytes.size(), 0);
    if (count < 0 && errno == EINTR) continue;
    secRequire(count > 0, errSecNotAvailable);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}
