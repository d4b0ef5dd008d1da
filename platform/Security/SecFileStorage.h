#pragma once

#include <Foundation/NSExport.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <Security/SecDesktopStorage.h>
#include <Security/SecFilePlace.h>
#include <Security/SecFileProtection.h>
#include <Security/SecSecret.h>
#include <Security/SecStorage.h>

/// One way to open a store.
struct SecFileSlotInfo {
  std::string name;                                           ///< 32 hexadecimal digits; empty in format 1
  SecFileProtection protection = SecFileProtection::keyFile;  ///< what opens it
  std::string keyFile;                                        ///< the path of its key file, or empty
};

/// A copy of a store that was put aside before the store was migrated from an older format.
struct SecFileFormerCopy {
  std::string path;     ///< of the copy
  std::string keyFile;  ///< the path of the key file that opens it, or empty
};

/// A key that is kept for one store or another.
struct SecFileKeptKey {
  /// Whether a store needs it.
  enum class Use {
    used,      ///< a store names it, or may do so
    leftover,  ///< the store that it was made for can be reached, and does not name it
    unknown,   ///< its store cannot be reached, or nothing says which store that is
  };
  std::string path;        ///< of the key file
  std::string store;       ///< the path of the store that it was made for, or empty
  Use use = Use::unknown;  ///< whether a store needs it
};

/// What is known about a store without decrypting any entry.
struct SecFileInfo {
  /// The path of the store file, with symbolic links in its folder resolved.
  std::string path;
  /// What opens it; any one of them is enough.
  std::vector<SecFileSlotInfo> keySlots;
  /// Whether access to its entries is refused until it is unlocked.
  bool locked = false;
  /// The number of entries, which a locked store reports too.
  std::uint64_t entries = 0;
  /// Copies of the store in an older format, next to it.
  std::vector<SecFileFormerCopy> formerCopies;
};

/// The credential store in one encrypted file. Every change is one transaction, which is on the disk when the
/// call returns success; what cannot be read is reported and left as it is.
/// Safe from any thread, and from any number of processes using one file. After a fork the child reopens the
/// file; a fork while another thread is in a transaction is not supported.
/// In addition to the statuses of each operation: errSecInteractionNotAllowed when locked, errSecBusy after
/// waiting for other processes (see setWaitLimit), errSecDecode for damage (then also for every later
/// change), errSecRolledBack for a store that went back to a former state, errSecForeignJournal for one with
/// the journal of another, errSecInvalidKeychain, errSecWrongSecVersion, errSecNotPrivate,
/// errSecNoSuchKeychain when the file is gone, errSecReadOnly, errSecDiskFull, errSecIO.
class NS_EXPORT SecFileStorage final : public SecStorage {
 public:
  /// What opening does when the store does not exist.
  enum class Missing {
    refuse,  ///< it fails with errSecNoSuchKeychain
    make,    ///< it makes a new store under a new key file
  };
  /// Asks somebody for the passphrase of a locked store. `reason` is errSecInteractionNotAllowed at first,
  /// and errSecAuthFailed after a wrong one. No value refuses.
  using Ask = std::function<std::optional<SecSecret>(OSStatus reason)>;
  /// A passphrase: one or more bytes of any value.
  using Bytes = std::span<const std::byte>;

  /// Opens the store at `place`; a missing one is made, under a new key file, or refused with
  /// errSecNoSuchKeychain. It is unlocked if that takes nobody, see unlock; otherwise it stays locked or, if
  /// nothing but a key file opens it, fails: with errSecDataNotAvailable if the key file is missing, with
  /// errSecAuthFailed if it is another store's. A store of an older format is opened as it is; its first
  /// change makes a copy of it and then migrates it.
  static OSStatus open(const SecFilePlace& place, Missing missing, std::unique_ptr<SecFileStorage>& storage);
  /// Makes a store that only the passphrase opens, and opens it; errSecDuplicateItem if there is a file at
  /// `place`, errSecParam for an empty passphrase.
  static OSStatus make(const SecFilePlace& place, Bytes passphrase, std::unique_ptr<SecFileStorage>& storage);
  ~SecFileStorage() override;

  OSStatus transact(Access access, const Work& work) override;
  OSStatus copyInfo(SecStorageInfo& info) override;
  void setWaitLimit(std::chrono::milliseconds limit) override;

  /// Unlocks with what takes nobody, in this order: the key file; the desktop's credential service, unless
  /// that is locked; the passphrase in the file vxfoundation.passphrase of the credential folder. The status
  /// is that of the first that the store has; errSecInteractionNotAllowed if it has none of them.
  OSStatus unlock();
  /// Unlocks with the passphrase; errSecAuthFailed if the passphrase is wrong or the store has none.
  OSStatus unlock(Bytes passphrase);
  /// Forgets all keys. Access to the entries is refused from then on, until the store is unlocked.
  void lock();
  /// Sets what to ask when a transaction begins on a store that is locked and has a passphrase, unless it was
  /// locked by lock(). It is called on the thread of the transaction, before that begins, until the
  /// passphrase is right or refused: errSecUserCanceled. It must not use this storage. Null asks nobody.
  void setAsk(Ask ask);

  /// Changes who can open the unlocked store, gives it new keys, and encrypts every entry anew, in one
  /// transaction: a key file or passphrase that opened it before opens nothing that is written later. A key
  /// file that is replaced is overwritten and removed, if it was made for this very file.
  ///@{
  /// Has the passphrase open it, in place of its key file or former passphrase; errSecParam for an empty one.
  /// Takes half a second and 128 MiB of memory.
  OSStatus setPassphrase(Bytes passphrase);
  /// Has a new key file open it, in place of its passphrase; errSecParam if it has none.
  OSStatus removePassphrase();
  /// Leaves who can open it; a key file is replaced by a new one.
  OSStatus rotate();
  ///@}

  /// Add a way to open the unlocked store, next to those that it has; errSecParam if there are eight.
  ///@{
  OSStatus addPassphrase(Bytes passphrase);
  OSStatus addKeyFile();
  /// Adds a key in the desktop's credential service; fails as SecDesktopStorage does. It is stored and read
  /// back before the store refers to it.
  OSStatus addDesktop(const SecDesktopOptions& options);
  ///@}
  /// Removes a way to open it, by the name of the slot, and gives the store new keys, as above. errSecParam
  /// if there is no such slot, and if no key file and no passphrase would be left.
  OSStatus removeSlot(const std::string& name);
  /// Sets `passphrase` to a new random one worth 128 bits, in groups of letters that can be typed in either
  /// case and with or without hyphens and spaces, to be added for recovery.
  static OSStatus makeRecoveryPassphrase(SecSecret& passphrase);

  /// Accepts a store that went back to a former state, such as a backup that was restored. Until then its
  /// entries cannot be read or changed: errSecRolledBack.
  OSStatus accept();

  /// Describes what the store is and how it is protected; works on a locked store.
  OSStatus info(SecFileInfo& info);
  /// Reads and checks every entry and every page of the file; errSecDecode if any check fails.
  OSStatus verify();
  /// Erases the copies in an older format that were put next to the store, with their key files. Other copies
  /// of the former store cannot be opened after that.
  OSStatus eraseFormerCopies();

  /// Passes `visit` every entry that can still be decrypted, oldest first, of the store at `place`, however
  /// damaged its file is. It is opened with its key file or, failing that, with the passphrase, which may be
  /// empty. One damaged page costs at most the entries that are on it. If the damage hides which state of an
  /// entry is the last, the newest that is left is passed on. Returns errSecDecode if no key can open
  /// anything.
  static OSStatus salvage(const SecFilePlace& place, Bytes passphrase,
                          const std::function<void(SecEntry)>& visit);
  /// Adds all of them to another storage, in one transaction, and sets `entries` to their number;
  /// errSecDuplicateItem, and nothing is added, if that storage has one of them.
  static OSStatus salvage(const SecFilePlace& place, Bytes passphrase, SecStorage& to,
                          std::uint64_t& entries);

  /// Sets `keys` to the key files in the key folder of a place, whatever store they were made for. Reads the
  /// stores that they name, and waits for those that are being written.
  static OSStatus keptKeys(const SecFilePlace& place, std::vector<SecFileKeptKey>& keys);
  /// Overwrites and removes a key file by its path, after judging it again: errSecParam if a store needs it
  /// or may do so, or if it is not a key file of that folder; errSecBusy while keys are being made. Nothing
  /// that needs the key, such as a backup, can be opened after that.
  static OSStatus eraseKeptKey(const SecFilePlace& place, const std::string& path);
  /// Do the same for items of the desktop's credential service, unless that is locked. Instead of a path, an
  /// item has the number of its slot. Fail as SecDesktopStorage does; nothing is asked.
  ///@{
  static OSStatus keptDesktopKeys(const SecFilePlace& place, std::vector<SecFileKeptKey>& keys);
  static OSStatus eraseKeptDesktopKey(const SecFilePlace& place, const std::string& number);
  ///@}

 private:
  class Implementation;
  explicit SecFileStorage(std::unique_ptr<Implementation> implementation);

  const std::unique_ptr<Implementation> implementation_;
};
