#include <Security/FileStore/SecFileWalk.h>

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

namespace {

constexpr int mostLinks = 40;

std::string currentFolder() {
  std::array<char, PATH_MAX> path;
  if (!::getcwd(path.data(), path.size())) secFailByErrno();
  return path.data();
}

/// A way from the root to a folder, which is taken one name at a time.
class Walk {
 public:
  Walk(const std::string& path, SecFolderRule rule, bool makes) : rule_(rule), makes_(makes) {
    prepend(path);
    if (!path.starts_with('/')) prepend(currentFolder());
    restart();
    // In a user namespace without a root user, the system belongs to whoever stands for it.
    system_ = at_.status().st_uid;
  }

  /// Returns no value if there is no such folder.
  std::optional<SecFileFolder> arrive() {
    while (!left_.empty()) {
      const std::string name = std::move(left_.back());
      left_.pop_back();
      if (!enter(name)) return std::nullopt;
    }
    judgeLast(at_.status());
    return SecFileFolder(std::move(at_), path_.empty() ? "/" : path_);
  }

 private:
  void restart() {
    at_ = SecFileDescriptor(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    secCall(at_.number());
    path_.clear();
  }

  /// Adds the names in `path` before those that are left.
  void prepend(const std::string& path) {
    for (std::size_t end = path.size(); end != 0;) {
      const std::size_t slash = path.rfind('/', end - 1);
      const std::size_t start = slash == path.npos ? 0 : slash + 1;
      if (start < end) left_.push_back(path.substr(start, end - start));
      end = slash == path.npos ? 0 : slash;
    }
  }

  bool enter(const std::string& name) {
    if (rule_ == SecFolderRule::own) judgeAncestor(at_.status());
    SecFileDescriptor next = open(name);
    if (!next.isOpen() && errno == ENOENT && makes_) next = make(name);
    if (next.isOpen()) {
      at_ = std::move(next);
      rename(name);
    } else if (errno == ENOTDIR || errno == ELOOP) {
      follow(name);
    } else if (errno == ENOENT) {
      return false;
    } else {
      secFailByErrno();
    }
    return true;
  }

  /// Only the last folder has to be readable, as it is synced.
  SecFileDescriptor open(const std::string& name) {
    const int access = left_.empty() ? O_RDONLY : O_PATH;
    return SecFileDescriptor(
        ::openat(at_.number(), name.c_str(), access | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  }

  void rename(const std::string& name) {
    if (name == "..")
      path_.erase(std::min(path_.rfind('/'), path_.size()));
    else if (name != ".")
      path_ += '/' + name;
  }

  void follow(const std::string& name) {
    secRequire(++links_ <= mostLinks, errSecNotPrivate);
    std::array<char, PATH_MAX> target;
    const ssize_t size = ::readlinkat(at_.number(), name.c_str(), target.data(), target.size());
    secRequire(size > 0, errSecNotPrivate);  // not a link, but not a folder either
    const std::string path(target.data(), static_cast<std::size_t>(size));
    prepend(path);
    if (path.starts_with('/')) restart();
  }

  /// Another process may make the folder at the same time.
  SecFileDescriptor make(const std::string& name) {
    const bool made = ::mkdirat(at_.number(), name.c_str(), 0700) == 0;
    if (!made && errno != EEXIST) secFailByErrno();
    SecFileDescriptor folder = open(name);
    if (!made || !folder.isOpen()) return folder;
    if ((folder.status().st_mode & 0777) != 0700) {  // a strange umask
      secCall(::fchmodat(at_.number(), name.c_str(), 0700, 0));
      secRequire((folder.status().st_mode & 0777) == 0700, errSecNotPrivate);
    }
    const SecFileDescriptor above(::openat(at_.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    secCall(::fsync(secCall(above.number())));
    return folder;
  }

  bool isTrusted(uid_t owner) const { return owner == user_ || owner == 0 || owner == system_; }

  void judgeAncestor(const struct stat& status) const {
    // Systems that give each user a group of the same number often let it write.
    const bool ownGroup = status.st_uid != 0 && status.st_gid == status.st_uid;
    const mode_t writers = status.st_mode & (ownGroup ? S_IWOTH : S_IWGRP | S_IWOTH);
    secRequire(isTrusted(status.st_uid) && (writers == 0 || (status.st_mode & S_ISVTX)), errSecNotPrivate);
  }

  void judgeLast(const struct stat& status) const {
    if (rule_ == SecFolderRule::own)
      secRequire(status.st_uid == user_ && (status.st_mode & 077) == 0, errSecNotPrivate);
    if (rule_ == SecFolderRule::others)
      secRequire(isTrusted(status.st_uid) && (status.st_mode & 022) == 0, errSecNotPrivate);
  }

  SecFolderRule rule_;
  bool makes_;
  std::vector<std::string> left_;  // the next name last
  SecFileDescriptor at_;
  std::string path_;
  const uid_t user_ = ::geteuid();
  uid_t system_ = 0;
  int links_ = 0;
};

}  // namespace

std::optional<SecFileFolder> secOpenFolder(const std::string& path, SecFolderRule rule) {
  return Walk(path, rule, false).arrive();
}

SecFileFolder secMakeFolder(const std::string& path, SecFolderRule rule) {
  auto folder = Walk(path, rule, true).arrive();
  secRequire(folder.has_value(), errSecIO);
  return std::move(*folder);
}
