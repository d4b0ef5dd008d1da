#include <Security/FileStore/SecFileSystem.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace {

OSStatus statusOfError(int error) {
  switch (error) {
    case ENOMEM:
      return errSecAllocate;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return errSecDiskFull;
    case EROFS:
      return errSecReadOnly;
    case EACCES:
    case EPERM:
      return errSecNotAvailable;
    case ELOOP:
    case ENOTDIR:
    case EISDIR:
    case ENXIO:
      return errSecNotPrivate;
    default:
      return errSecIO;
  }
}

[[noreturn]] void fail() { throw SecFailure{statusOfError(errno)}; }

void done(int result) {
  if (result < 0) fail();
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int number() const { return number_; }
  bool isOpen() const { return number_ >= 0; }

 private:
  int number_;
};

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == path.npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

bool isPrivate(const struct stat& status, mode_t kind) {
  return (status.st_mode & S_IFMT) == kind && status.st_uid == ::geteuid() && (status.st_mode & 077) == 0;
}

void syncFolder(const std::string& path) {
  const Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  done(folder.number());
  done(::fsync(folder.number()));
}

void makeFolder(const std::string& path) {
  if (::mkdir(path.c_str(), 0700) == 0) {
    done(::chmod(path.c_str(), 0700));  // whatever the umask left of it
    syncFolder(folderOf(path));
  } else if (errno != EEXIST) {
    fail();
  }
}

void writeAll(int descriptor, SecView content) {
  while (!content.empty()) {
    const ssize_t written = ::write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    done(static_cast<int>(written < 0 ? -1 : 0));
    content = content.subspan(static_cast<std::size_t>(written));
  }
}

void fill(int descriptor, SecView content) {
  done(::fchmod(descriptor, 0600));
  writeAll(descriptor, content);
  done(::fsync(descriptor));
}

/// Gives a file without a name a name; false when that is taken.
bool link(const std::string& from, const std::string& to) {
  if (::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
  if (errno != EEXIST) fail();
  return false;
}

/// For file systems that know no files without a name: a crash leaves one with a name of its own.
bool publishThroughName(const std::string& path, SecView content) {
  std::string name = path + ".XXXXXX";
  const Descriptor file(::mkostemp(name.data(), O_CLOEXEC));
  done(file.number());
  struct Remove {
    const std::string& name;
    ~Remove() { ::unlink(name.c_str()); }
  } const remove{name};
  fill(file.number(), content);
  return link(name, path);
}

bool publish(const std::string& path, SecView content) {
  // Only through /proc does a file without a name get one.
  if (::access("/proc/self/fd", F_OK) != 0) return publishThroughName(path, content);
  const Descriptor file(::open(folderOf(path).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
  if (!file.isOpen() && (errno == EOPNOTSUPP || errno == EISDIR)) return publishThroughName(path, content);
  done(file.number());
  fill(file.number(), content);
  return link("/proc/self/fd/" + std::to_string(file.number()), path);
}

}  // namespace

std::optional<SecFileNumber> secJudgeFile(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return std::nullopt;
    fail();
  }
  secRequire(isPrivate(status, S_IFREG), errSecNotPrivate);
  return SecFileNumber{status.st_dev, status.st_ino};
}

void secMakePrivateFolder(const std::string& path) {
  for (std::size_t slash = path.find('/', 1); slash != path.npos; slash = path.find('/', slash + 1))
    makeFolder(path.substr(0, slash));
  makeFolder(path);
}

bool secJudgeFolder(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return false;
    fail();
  }
  secRequire(isPrivate(status, S_IFDIR), errSecNotPrivate);
  return true;
}

std::optional<std::string> secResolveFolder(const std::string& path) {
  char resolved[PATH_MAX];
  // The dot is there in folders alone.
  if (::realpath((path + "/.").c_str(), resolved)) return resolved;
  if (errno == ENOENT) return std::nullopt;
  fail();
}

bool secPublishFile(const std::string& path, SecView content) {
  const bool published = publish(path, content);
  if (published) syncFolder(folderOf(path));
  return published;
}

std::optional<SecSecret> secReadPrivateFile(const std::string& path, std::size_t limit) {
  // Without O_NONBLOCK a pipe in place of the file would be waited for.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.isOpen() && errno == ENOENT) return std::nullopt;
  done(file.number());
  struct stat status {};
  done(::fstat(file.number(), &status));
  secRequire(isPrivate(status, S_IFREG), errSecNotPrivate);
  SecSecret content(limit);
  const ssize_t size = ::read(file.number(), content.writableBytes().data(), limit);
  if (size < 0) fail();
  return SecSecret(content.bytes().first(static_cast<std::size_t>(size)));
}

void secRemoveFile(const std::string& path) {
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) fail();
}
