#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include <Security/FileStore/SecFileBytes.h>
#include <Security/FileStore/SecFileCalls.h>
#include <Security/SecSecret.h>

/// Identifies a file whatever its name.
struct SecFileNumber {
  dev_t device = 0;
  ino_t inode = 0;
  friend bool operator==(const SecFileNumber&, const SecFileNumber&) = default;
};

/// Returns which file it is; fails with errSecNotPrivate unless it is a regular file of this user, mode 0600
/// or less, with at most one name.
SecFileNumber secRequirePrivateFile(const struct stat& status);

/// A folder that is held open. Files in it are reached from its descriptor and a name without slashes, so
/// that nobody can replace the folder in the meantime; links are never followed. A file that is not private
/// (secRequirePrivateFile) fails with errSecNotPrivate; nothing is ever made private after the fact.
class SecFileFolder {
 public:
  /// `path` is only for people and for records; it has no links.
  SecFileFolder(SecFileDescriptor descriptor, std::string path)
      : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

  int descriptor() const { return descriptor_.number(); }
  const std::string& path() const { return path_; }
  std::string pathOf(const std::string& name) const {
    return path_ == "/" ? path_ + name : path_ + '/' + name;
  }
  dev_t device() const { return descriptor_.status().st_dev; }

  /// Returns which private file has this name, or no value if there is none.
  std::optional<SecFileNumber> judge(const std::string& name) const;
  bool contains(const std::string& name) const;
  std::vector<std::string> names() const;
  /// Opens a private file with the flags of open(2); the result is not open if there is no such file.
  SecFileDescriptor open(const std::string& name, int flags) const;
  /// Reads a private file, at most `limit` bytes of it; no value if there is none.
  std::optional<SecSecret> read(const std::string& name, std::size_t limit) const;
  void sync() const { secCall(::fsync(descriptor())); }

  /// Removes a file if it exists.
  void remove(const std::string& name) const;
  /// Overwrites a private file, syncs it, removes it and syncs the folder; does nothing if there is none.
  void erase(const std::string& name) const;

 private:
  SecFileDescriptor descriptor_;
  std::string path_;
};

/// Writes all of `content` at the place where the file stands.
void secWriteAll(int descriptor, SecView content);
