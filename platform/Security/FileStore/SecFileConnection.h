#pragma once

#include <sys/types.h>

#include <Security/FileStore/SecFileDatabase.h>
#include <Security/FileStore/SecFileIndex.h>
#include <Security/FileStore/SecFileKeys.h>
#include <Security/FileStore/SecFileSystem.h>

/// A store file that was found private and opened. Of one thread at a time.
class SecFileConnection {
 public:
  /// Opens the file at `path`; fails with errSecNoSuchKeychain when there is none.
  SecFileConnection(std::string path, std::chrono::milliseconds waitLimit);

  /// Whether it was opened by this process, and not by one that this was forked from.
  bool isOurs() const;
  /// Whether the file at the path is still the one that was opened.
  bool isCurrent() const;

  SecFileDatabase& database() { return database_; }
  const SecStoreID& store() const { return content_.store; }
  /// The slot as it was when the file was opened, and as it is now, within a transaction.
  const SecFileSlot& slotAtOpening() const { return content_.slot; }
  SecFileSlot readSlot();
  void writeSlot(const SecFileSlot& slot);

 private:
  struct Content {
    SecStoreID store{};
    SecFileSlot slot;
  };
  Content readContent();

  std::string path_;
  pid_t process_;
  SecFileNumber file_;
  SecFileDatabase database_;
  Content content_;
};
