#include <Security/FileStore/SecFileDraft.h>

#include <fcntl.h>
#include <stdio.h>

#include <cerrno>

#include <Security/FileStore/SecFileCrypto.h>

SecFileDraft::SecFileDraft(const SecFileFolder& folder, std::string name)
    : folder_(folder), name_(std::move(name)) {
  openWithoutName();
  if (!file_.isOpen()) openProvisional();
  secCall(::fchmod(file_.number(), 0600));  // whatever the umask has left of it
}

SecFileDraft::~SecFileDraft() {
  if (!provisional_.empty()) ::unlinkat(folder_.descriptor(), provisional_.c_str(), 0);
}

/// Only where /proc is there to name the file later: naming it by its descriptor takes a privilege.
void SecFileDraft::openWithoutName() {
  const int flags = O_TMPFILE | O_RDWR | O_CLOEXEC;
  file_ = SecFileDescriptor(::openat(folder_.descriptor(), ".", flags, 0600));
  if (!file_.isOpen() && errno != EOPNOTSUPP && errno != EISDIR) secFailByErrno();
  if (file_.isOpen() && ::access(pathInProc().c_str(), F_OK) != 0) file_ = SecFileDescriptor();
}

void SecFileDraft::openProvisional() {
  const std::string name = name_ + '.' + secHexadecimal(secRandomBytes<4>());
  file_ = SecFileDescriptor(
      ::openat(folder_.descriptor(), name.c_str(), O_CREAT | O_EXCL | O_NOFOLLOW | O_RDWR | O_CLOEXEC, 0600));
  secCall(file_.number());
  provisional_ = name;
}

SecFileNumber SecFileDraft::number() const {
  const struct stat status = file_.status();
  return {status.st_dev, status.st_ino};
}

bool SecFileDraft::publish() {
  secCall(::fsync(file_.number()));
  const bool published = provisional_.empty() ? linkTo(AT_FDCWD, pathInProc(), AT_SYMLINK_FOLLOW) : rename();
  if (published) folder_.sync();
  return published;
}

std::string SecFileDraft::pathInProc() const { return "/proc/self/fd/" + std::to_string(file_.number()); }

bool SecFileDraft::linkTo(int folder, const std::string& path, int flags) {
  if (::linkat(folder, path.c_str(), folder_.descriptor(), name_.c_str(), flags) == 0) return true;
  if (errno != EEXIST) secFailByErrno();
  return false;
}

bool SecFileDraft::rename() {
  const int folder = folder_.descriptor();
  const int result = ::renameat2(folder, provisional_.c_str(), folder, name_.c_str(), RENAME_NOREPLACE);
  if (result == 0) return provisional_.clear(), true;
  if (errno == EEXIST) return false;
  if (errno != EINVAL) secFailByErrno();
  // A file system of the network: for a moment, the file has two names.
  if (!linkTo(folder, provisional_, 0)) return false;
  secCall(::unlinkat(folder, provisional_.c_str(), 0));
  return provisional_.clear(), true;
}

bool secPublishFile(const SecFileFolder& folder, const std::string& name, SecView content) {
  SecFileDraft draft(folder, name);
  draft.write(content);
  return draft.publish();
}
