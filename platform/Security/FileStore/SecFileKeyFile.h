#pragma once

#include <optional>

#include <Security/FileStore/SecFileOwner.h>
#include <Security/FileStore/SecFileSlot.h>

/// The content of a key file: the secret of a slot, and the store that the file was made for.
struct SecFileKey {
  SecSecret secret;
  SecFileOwner owner;
};

/// Returns the name of a slot's key file.
std::string secKeyFileName(const SecTag& slot);

/// Reads a key file: no value if there is none, errSecAuthFailed if it is not a key file.
std::optional<SecFileKey> secReadKeyFile(const SecFileFolder& folder, const std::string& name);

/// A lock on a key folder: shared while a key file exists that no store names yet, exclusive while files are
/// judged and erased. Where the file system has no such locks, there is none.
class SecFileKeyLock {
 public:
  enum class Purpose { make, erase };
  /// Fails with errSecBusy where erasing would have to wait.
  SecFileKeyLock(const SecFileFolder& folder, Purpose purpose);

 private:
  SecFileDescriptor folder_;
};

/// A slot with a new number and a key file with a new secret. The file is erased again unless it is kept.
class SecFileNewKeyFile {
 public:
  /// `folder` has to outlive it.
  SecFileNewKeyFile(const SecFileFolder& folder, const SecFileOwner& owner);
  SecFileNewKeyFile(const SecFileNewKeyFile&) = delete;
  SecFileNewKeyFile& operator=(const SecFileNewKeyFile&) = delete;
  ~SecFileNewKeyFile();

  const SecFileSlot& slot() const { return slot_; }
  const SecSecret& slotKey() const { return slotKey_; }
  void keep() { kept_ = true; }

 private:
  const SecFileFolder& folder_;
  SecFileKeyLock lock_;
  SecFileSlot slot_ = secMakeSlot(SecFileProtection::keyFile);
  SecSecret slotKey_;
  bool kept_ = false;
};
