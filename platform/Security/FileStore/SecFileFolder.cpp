#include <Security/FileStore/SecFileFolder.h>

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

SecFileNumber secRequirePrivateFile(const struct stat& status) {
  const bool isPrivate = S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
                         (status.st_mode & 077) == 0 && status.st_nlink <= 1;
  secRequire(isPrivate, errSecNotPrivate);
  return {status.st_dev, status.st_ino};
}

std::optional<SecFileNumber> SecFileFolder::judge(const std::string& name) const {
  struct stat status {};
  if (::fstatat(descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
    return secRequirePrivateFile(status);
  if (errno != ENOENT) secFailByErrno();
  return std::nullopt;
}

bool SecFileFolder::contains(const std::string& name) const {
  return ::faccessat(descriptor(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0 || errno != ENOENT;
}

std::vector<std::string> SecFileFolder::names() const {
  // A descriptor of its own: reading moves the place in the folder.
  const int own = secCall(::openat(descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const auto close = [](DIR* folder) { ::closedir(folder); };
  const std::unique_ptr<DIR, decltype(close)> folder(::fdopendir(own), close);
  if (!folder) {
    ::close(own);
    throw SecFailure{errSecAllocate};
  }
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(folder.get())) names.emplace_back(entry->d_name);
  std::sort(names.begin(), names.end());
  return names;
}

SecFileDescriptor SecFileFolder::open(const std::string& name, int flags) const {
  // Without O_NONBLOCK, opening a pipe in place of the file would block.
  SecFileDescriptor file(
      ::openat(descriptor(), name.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
  if (!file.isOpen() && errno == ENOENT) return file;
  secCall(file.number());
  secRequirePrivateFile(file.status());
  return file;
}

std::optional<SecSecret> SecFileFolder::read(const std::string& name, std::size_t limit) const {
  const SecFileDescriptor file = open(name, O_RDONLY);
  if (!file.isOpen()) return std::nullopt;
  SecSecret content(std::min(limit, static_cast<std::size_t>(file.status().st_size)));
  const std::span<std::byte> bytes = content.writableBytes();
  const auto size = static_cast<std::size_t>(secCall(::read(file.number(), bytes.data(), bytes.size())));
  return size == bytes.size() ? std::move(content) : SecSecret(bytes.first(size));
}

void SecFileFolder::remove(const std::string& name) const {
  if (::unlinkat(descriptor(), name.c_str(), 0) != 0 && errno != ENOENT) secFailByErrno();
}

void SecFileFolder::erase(const std::string& name) const {
  const SecFileDescriptor file = open(name, O_WRONLY);
  if (!file.isOpen()) return;
  constexpr std::array<std::byte, 4096> zeros{};
  for (auto left = static_cast<std::size_t>(file.status().st_size); left > 0;) {
    const std::size_t size = std::min(left, zeros.size());
    secWriteAll(file.number(), SecView(zeros).first(size));
    left -= size;
  }
  secCall(::fsync(file.number()));
  remove(name);
  sync();
}

void secWriteAll(int descriptor, SecView content) {
  while (!content.empty()) {
    const ssize_t written = ::write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    content = content.subspan(static_cast<std::size_t>(secCall(written)));
  }
}
