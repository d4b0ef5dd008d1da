#pragma once

#include <sys/types.h>

#include <Security/SecFileDatabase.h>
#include <Security/SecFileDirectory.h>
#include <Security/SecFileKeys.h>
#include <Security/SecFileSystem.h>

/// A store file that was found private and opened. Of one thread at a time.
class SecFileConnection {
 public:
  /// Opens the file at `path`; fails with errSecNoSuchKeychain when there is none.
  explicit SecFileConnection(std::string path);

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

/// The path of a store's key file in `keyFolder`.
std::string secKeyFilePath(const std::string& keyFolder, const SecStoreID& store);
/// Reads the key file: errSecDataNotAvailable when it is missing, errSecAuthFailed when it is none.
SecSecret secReadKeyFile(const std::string& keyFolder, const SecStoreID& store);
/// Makes a new key and its file, in place of one that is there.
SecSecret secMakeKeyFile(const std::string& keyFolder, const SecStoreID& store);

/// Makes an empty store at `path` under a new key file. When another process has made one meanwhile, that
/// one stands, and nothing of this one remains.
void secMakeStore(const std::string& path, const std::string& keyFolder);
