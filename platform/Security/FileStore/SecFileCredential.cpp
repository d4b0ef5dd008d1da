#include <Security/FileStore/SecFileCredential.h>

#include <fcntl.h>

#include <algorithm>

#include <Security/FileStore/SecFileCalls.h>

namespace {

constexpr char name[] = "/vxfoundation.passphrase";
constexpr off_t largest = 1 << 16;

}  // namespace

/// Its owner and mode are the service manager's business, which may use access lists.
std::optional<SecSecret> secReadCredential(const std::string& folder) {
  if (folder.empty()) return std::nullopt;
  const SecFileDescriptor file(
      ::open((folder + name).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.isOpen()) return std::nullopt;
  const struct stat status = file.status();
  if (!S_ISREG(status.st_mode) || status.st_size > largest) return std::nullopt;
  SecSecret content(static_cast<std::size_t>(status.st_size));
  const auto bytes = content.writableBytes();
  const ssize_t count = ::read(file.number(), bytes.data(), bytes.size());
  auto size = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  if (size > 0 && bytes[size - 1] == std::byte{'\n'}) --size;
  if (size == 0) return std::nullopt;
  return SecSecret(bytes.first(size));
}
