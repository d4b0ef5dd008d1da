#pragma once

#include <memory>

#include <Security/FileStore/Format1/SecFormat1Store.h>
#include <Security/FileStore/SecFileConnection.h>
#include <Security/FileStore/SecFileKeyring.h>
#include <Security/FileStore/SecFileSite.h>
#include <Security/FileStore/SecFileWatch.h>

class SecFileWork;

/// A store file in use: the connection to it and, while it is unlocked, its keys. Failures are thrown as
/// SecFailure. Used by one thread at a time.
class SecFileSession {
 public:
  /// Opens the file of a site, and unlocks it if that takes nobody. Otherwise it stays locked or, if a key
  /// file is all that opens it, fails.
  SecFileSession(SecFileOpenSite site, std::unique_ptr<SecFileKeeper> desktop);

  /// Returns the connection to the file that is there now; opens it again after a fork, or if the file was
  /// replaced.
  SecFileConnection& connection();
  void setWaitLimit(std::chrono::milliseconds limit);

  bool isLocked() const { return former_ ? former_->isLocked() : keyring_.isLocked(); }
  /// Whether some passphrase opens the store.
  bool hasPassphrase();
  /// Unlocks with what takes nobody: a key file, the desktop if that is unlocked, the service manager's
  /// passphrase. Fails as the first of those that the store has.
  void unlockUnattended();
  void unlockByPassphrase(SecView passphrase);
  void lock();

  const SecFileSite& site() const { return site_; }
  SecFileKeyring& keyring() { return keyring_; }
  SecFileKeeper& desktop() { return *desktop_; }
  /// Ends the use of a store that was migrated.
  void forgetFormer() { former_.reset(); }
  SecFileWatch& watch() { return watch_; }
  /// Returns the folder of the keys and notes; null if it cannot be used, or is missing and is not to be
  /// made.
  const SecFileFolder* keyFolder(bool makes = false);

  /// Damage that was seen stays known until another file is opened.
  ///@{
  void noteDamage() { damaged_ = true; }
  void requireChangeable() const { secRequire(!damaged_, errSecDecode); }
  ///@}

 private:
  friend class SecFileWork;
  void load(SecFileWork& work, bool mayBeLocked);
  std::optional<SecFileHeader> readHeader();
  bool mayBeUnlocked();
  void openUnattended(const SecFileHeader& header);
  void openByCredential(const SecFileHeader& header);
  void openByKeyFile(SecFileWork& work);
  void openFormerUnattended();
  void openFormerByKeyFile(const SecFileFolder* folder);
  void openMigrated(const SecFormat1Store& before, SecFileWork& work);
  void verifySeal(SecFileWork& work);

  const SecFileSite site_;
  const std::unique_ptr<SecFileKeeper> desktop_;
  std::chrono::milliseconds waitLimit_{5000};
  std::unique_ptr<SecFileConnection> connection_;
  std::unique_ptr<SecFormat1Store> former_;  // while the file has format 1
  SecFileKeyring keyring_;
  SecFileWatch watch_;
  std::optional<SecFileFolder> keyFolder_;
  bool damaged_ = false;
};

/// A transaction on the file of a session; rolled back at its end unless it was committed. What it refers to
/// is valid until then.
class SecFileWork {
 public:
  /// What is required before anything is done.
  enum class Trust {
    nothing,  ///< the store may be locked
    seal,     ///< it is unlocked, and its seal was verified
    all,      ///< in addition it has not gone back to a former state: otherwise errSecRolledBack
  };
  SecFileWork(SecFileSession& session, bool writing, Trust trust);
  SecFileWork(const SecFileWork&) = delete;
  SecFileWork& operator=(const SecFileWork&) = delete;
  ~SecFileWork();

  SecFileConnection& connection() { return connection_; }
  SecFileDatabase& database() { return connection_.database(); }
  /// The store, if it has format 1, otherwise null. Of such a store there is no header, no seal and no
  /// context.
  SecFormat1Store* former() { return session_.former_.get(); }
  const SecFileHeader& header() { return connection_.header(); }
  SecFileSeal& seal() { return connection_.seal(session_.keyring_.keys()); }
  SecFileContext context() { return {database(), session_.keyring_.keys(), header().store}; }

  /// Commits what has this seal now, and remembers its count of changes.
  void commit(const SecStoreID& store, const SecFileSeal& committed);

 private:
  void believe(Trust trust);

  SecFileSession& session_;
  SecFileConnection& connection_;
  SecFileUnitOfWork unit_;
  bool writing_;
};
