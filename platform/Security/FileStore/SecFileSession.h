#pragma once

#include <memory>
#include <string>

#include <Security/FileStore/SecFileConnection.h>
#include <Security/FileStore/SecFileEntries.h>

/// A store file in use: the connection to it and, while it is unlocked, its keys. What cannot be done is
/// thrown as SecFailure. Of one thread at a time.
class SecFileSession {
 public:
  /// Opens the file at `path`, which is there, and unlocks it unless it takes a passphrase.
  SecFileSession(std::string path, std::string keyFolder);

  /// The connection to the file that is there now, opened anew where a fork or another file made it stale.
  SecFileConnection& connection();
  /// What is needed to read entries; fails with errSecInteractionNotAllowed when locked.
  SecFileContext context();
  void setWaitLimit(std::chrono::milliseconds limit);
  bool isLocked() const { return keys_ == nullptr; }

  void unlockByKeyFile();
  void unlockByPassphrase(SecView passphrase);
  void lock() { keys_.reset(); }
  void setPassphrase(SecView passphrase);
  void removePassphrase();

  /// Damage that was seen stays known until another file is opened.
  void noteDamage() { damaged_ = true; }
  void requireChangeable() const { secRequire(!damaged_, errSecDecode); }

  const std::string& path() const { return path_; }
  const std::string& keyFolder() const { return keyFolder_; }

 private:
  SecFileSlot currentSlot();
  void unlockWhereNothingIsAsked();
  void unwrap(const SecFileSlot& slot, SecView credential);
  SecFileUnitOfWork changeProtection(const SecStoreID& store);
  void removeIdleKeyFile(const SecStoreID& store);

  const std::string path_;
  const std::string keyFolder_;
  std::unique_ptr<SecFileConnection> connection_;
  std::unique_ptr<SecFileKeys> keys_;
  SecStoreID keysFor_{};
  bool damaged_ = false;
  std::chrono::milliseconds waitLimit_{5000};
};
