#pragma once

#include <optional>

#include <Security/FileStore/SecFileFolder.h>
#include <Security/FileStore/SecFileHeader.h>
#include <Security/FileStore/SecFileKeeper.h>

/// The keys of a store while it is unlocked. Used by one thread at a time.
class SecFileKeyring {
 public:
  bool isLocked() const { return !opened_; }
  /// Returns the keys; fails with errSecInteractionNotAllowed if the store is locked.
  const SecFileKeys& keys() const;

  /// Opens the store with a file in the key folder, which is null if it is missing: errSecDataNotAvailable if
  /// there is no such file, errSecAuthFailed if it does not fit, errSecInteractionNotAllowed if no slot has a
  /// key file.
  void openByKeyFile(const SecFileHeader& header, const SecFileFolder* keyFolder);
  /// Opens the store with a passphrase; fails with errSecAuthFailed if no slot has this one.
  void openByPassphrase(const SecFileHeader& header, SecView passphrase);
  /// Opens the store with an item of the desktop's service; fails as SecFileKeeper::read does, with
  /// errSecAuthFailed if it does not fit, and with errSecInteractionNotAllowed if no slot has such an item.
  void openByDesktop(const SecFileHeader& header, SecFileKeeper& desktop);
  /// Brings the keys up to date if the store has other ones than when it was opened: with the slot that
  /// opened it, otherwise with a key file. Fails as openByKeyFile does, and then the store is locked.
  void follow(const SecFileHeader& header, const SecFileFolder* keyFolder);
  void lock() { opened_.reset(); }

  /// Returns the key of a slot if it is the slot that opened the store, otherwise null.
  const SecSecret* keyOf(const SecFileSlot& slot) const;
  /// Takes over the keys of a change that was committed, and the slot that they are opened with from now on.
  void adopt(SecFileKeys keys, const SecTag& slot, SecSecret slotKey);
  void adopt(SecFileKeys keys) { opened_->keys = std::move(keys); }

 private:
  struct Opened {
    SecFileKeys keys;
    SecTag slot;
    SecSecret slotKey;
  };
  void open(const SecFileHeader& header, const SecFileSlot& slot, SecSecret slotKey);

  std::optional<Opened> opened_;
};
