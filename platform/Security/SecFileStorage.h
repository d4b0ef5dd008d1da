#pragma once

#include <Foundation/NSExport.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include <Security/SecFilePlace.h>
#include <Security/SecFileProtection.h>
#include <Security/SecStorage.h>

/// What is known about a store without decrypting any entry.
struct SecFileInfo {
  /// The path of the store file, with symbolic links in its folder resolved.
  std::string path;
  /// What opens it.
  SecFileProtection protection = SecFileProtection::keyFile;
  /// The path of its key file; empty when a passphrase protects the store.
  std::string keyFile;
  /// Whether access to its entries is refused until it is unlocked.
  bool locked = false;
  /// The number of entries, which a locked store reports too.
  std::uint64_t entries = 0;
};

/// The credential store in one encrypted file. Every change is one transaction, which is on the disk when the
/// call returns success; what cannot be read is reported and left as it is.
/// Safe from any thread, and from any number of processes using one file. After a fork the child reopens the
/// file; a fork while another thread is in a transaction is not supported.
/// In addition to the statuses of each operation: errSecInteractionNotAllowed when locked, errSecBusy after
/// waiting for other processes (see setWaitLimit), errSecDecode for damage (then also for every later
/// change), errSecInvalidKeychain, errSecWrongSecVersion, errSecNotPrivate, errSecNoSuchKeychain when the
/// file is gone, errSecReadOnly, errSecDiskFull, errSecIO.
class NS_EXPORT SecFileStorage final : public SecStorage {
 public:
  /// What opening does when the store does not exist.
  enum class Missing {
    refuse,  ///< it fails with errSecNoSuchKeychain
    make,    ///< it makes a new store under a new key file
  };
  /// A passphrase: one or more bytes of any value.
  using Bytes = std::span<const std::byte>;

  /// Opens the store at `place`; a missing one is made, under a new key file, or refused with
  /// errSecNoSuchKeychain. A store under a key file is unlocked: errSecDataNotAvailable if its key file is
  /// missing, errSecAuthFailed if the key file is another store's. A store under a passphrase stays locked.
  static OSStatus open(const SecFilePlace& place, Missing missing, std::unique_ptr<SecFileStorage>& storage);
  ~SecFileStorage() override;

  OSStatus transact(Access access, const Work& work) override;
  OSStatus copyInfo(SecStorageInfo& info) override;
  void setWaitLimit(std::chrono::milliseconds limit) override;

  /// Unlocks with the key file; errSecInteractionNotAllowed if the store has a passphrase.
  OSStatus unlock();
  /// Unlocks with the passphrase; errSecAuthFailed if the passphrase is wrong or the store has none.
  OSStatus unlock(Bytes passphrase);
  /// Forgets all keys. Access to the entries is refused from then on, until the store is unlocked.
  void lock();

  /// Protects the unlocked store with a passphrase in place of its key file or former passphrase; errSecParam
  /// for an empty one. Takes about half a second and 128 MiB of memory.
  OSStatus setPassphrase(Bytes passphrase);
  /// Protects the unlocked store with a new key file in place of its passphrase; errSecParam if it has none.
  OSStatus removePassphrase();

  /// Describes what the store is and how it is protected; works on a locked store.
  OSStatus info(SecFileInfo& info);
  /// Reads and checks every entry and every page of the file; errSecDecode if any check fails.
  OSStatus verify();
  /// Passes `visit` every entry that still authenticates by itself, to rescue what is left of a damaged
  /// store. An older state that was put back behind the store's back is not distinguished from a current one
  /// here.
  OSStatus salvage(const std::function<void(SecEntry)>& visit);

 private:
  class Implementation;
  explicit SecFileStorage(std::unique_ptr<Implementation> implementation);

  const std::unique_ptr<Implementation> implementation_;
};
