#pragma once

#include <sys/types.h>

#include <Security/FileStore/SecFileHeader.h>
#include <Security/FileStore/SecFileKeyFile.h>
#include <Security/FileStore/SecFileSeal.h>

/// A store file that was found private and opened, and what was last read of it. Used by one thread at a
/// time.
class SecFileConnection {
 public:
  /// Opens a file; fails with errSecNoSuchKeychain if it does not exist.
  SecFileConnection(SecFileFolder folder, const std::string& name, std::chrono::milliseconds waitLimit);

  /// Whether it was opened by this process, and not by one that this process was forked from.
  bool isOurs() const;
  /// Whether the file at the path is still the one that was opened.
  bool isCurrent() const;

  SecFileDatabase& database() { return database_; }
  const SecFileFolder& folder() const { return folder_; }
  const std::string& name() const { return name_; }
  /// This file, as key files refer to it.
  SecFileOwner owner() const { return {folder_.pathOf(name_), database_.fileNumber()}; }

  /// The header, and the seal after it was verified. To be called within a transaction; they are read again
  /// once anybody has changed the file. The seal may be changed, and is forgotten if the change is not kept.
  ///@{
  const SecFileHeader& header();
  SecFileSeal& seal(const SecFileKeys& keys);
  void forgetSeal() { seal_.reset(); }
  ///@}

 private:
  void readAgain();

  SecFileFolder folder_;
  std::string name_;
  pid_t process_;
  SecFileDatabase database_;
  std::optional<unsigned> version_;  // of the data that was read
  SecFileHeader header_;
  SecDigest headerDigest_{};
  std::optional<SecFileSeal> seal_;
};
