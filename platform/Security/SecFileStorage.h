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

/// What can be told of a store without opening any entry.
struct SecFileInfo {
  /// The store file, its folder without links.
  std::string path;
  /// What opens it.
  SecFileProtection protection = SecFileProtection::keyFile;
  /// The path of its key file; empty when a passphrase protects the store.
  std::string keyFile;
  /// Whether its entries are refused until it is unlocked.
  bool locked = false;
  /// How many there are, which a locked store tells, too.
  std::uint64_t entries = 0;
};

/// The credential store in one encrypted file. Every change is one transaction that is on the disk when it
/// is answered; what cannot be read is reported and left as it is.
/// Safe from any thread, and from any number of processes on one file. After a fork the child opens the
/// file anew; a fork while another thread is in a transaction is not supported.
/// Beside the statuses of what is asked: errSecInteractionNotAllowed when locked, errSecBusy after five
/// seconds of waiting for other processes, errSecDecode for damage (then also for every later change),
/// errSecInvalidKeychain, errSecWrongSecVersion, errSecNotPrivate, errSecNoSuchKeychain when the file is
/// gone, errSecReadOnly, errSecDiskFull, errSecIO.
class NS_EXPORT SecFileStorage final : public SecStorage {
 public:
  /// What becomes of opening a store that is not there.
  enum class Missing {
    refuse,  ///< errSecNoSuchKeychain
    make,    ///< a new store under a new key file
  };
  /// A passphrase: any bytes that are not empty.
  using Bytes = std::span<const std::byte>;

  /// Opens the store at `place`; one that is not there is made, under a new key file, or refused with
  /// errSecNoSuchKeychain. A store under a key file is unlocked: errSecDataNotAvailable when its key file
  /// is missing, errSecAuthFailed when it is another's. A store under a passphrase is left locked.
  static OSStatus open(const SecFilePlace& place, Missing missing, std::unique_ptr<SecFileStorage>& storage);
  ~SecFileStorage() override;

  OSStatus transact(Access access, const Work& work) override;
  OSStatus copyInfo(SecStorageInfo& info) override;

  /// Unlocks by the key file; errSecInteractionNotAllowed when the store has a passphrase.
  OSStatus unlock();
  /// Unlocks by the passphrase: errSecAuthFailed when it is another one or the store has none.
  OSStatus unlock(Bytes passphrase);
  /// Forgets all keys. What comes after is refused until the store is unlocked.
  void lock();

  /// Protects the unlocked store by a passphrase in place of its key file or former passphrase. An empty one
  /// is errSecParam. Takes about half a second and 128 MiB of memory.
  OSStatus setPassphrase(Bytes passphrase);
  /// Protects the unlocked store by a new key file in place of its passphrase; errSecParam when it has none.
  OSStatus removePassphrase();

  /// Tells what the store is and how it is protected; works on a locked store.
  OSStatus info(SecFileInfo& info);
  /// Reads and checks every entry and every page of the file; errSecDecode when anything does not hold.
  OSStatus verify();
  /// Hands `visit` every entry that still authenticates by itself, for what is left of a damaged store.
  /// An old state that was put back behind the store's back is not told from a current one here.
  OSStatus salvage(const std::function<void(SecEntry)>& visit);

 private:
  class Implementation;
  explicit SecFileStorage(std::unique_ptr<Implementation> implementation);

  const std::unique_ptr<Implementation> implementation_;
};
