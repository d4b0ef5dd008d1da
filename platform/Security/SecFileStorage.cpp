#include <Security/SecFileStorage.h>

#include <mutex>
#include <utility>

#include <Security/FileStore/SecFileCreation.h>
#include <Security/FileStore/SecFileDesktopKeeper.h>
#include <Security/FileStore/SecFileLeftovers.h>
#include <Security/FileStore/SecFileMigration.h>
#include <Security/FileStore/SecFileOperations.h>
#include <Security/FileStore/SecFileProtecting.h>
#include <Security/FileStore/SecFileRecovery.h>
#include <Security/FileStore/SecFileSalvage.h>

class SecFileStorage::Implementation {
 public:
  explicit Implementation(SecFileOpenSite site) : session_(std::move(site), secMakeDesktopKeeper()) {}

  /// Runs `action` with exclusive use of the session.
  template <class Action>
  OSStatus alone(Action&& action) {
    const std::lock_guard lock(mutex_);
    const OSStatus status = secStatusOf([&] { action(session_); });
    if (status == errSecDecode) session_.noteDamage();
    return status;
  }

  /// Does the same for a transaction, on a store that is unlocked for it.
  OSStatus transact(Access access, const Work& work) {
    return alone([&](SecFileSession& session) {
      if (ask_ && mayAsk_ && session.isLocked()) unlockByAsking(session);
      secTransact(session, access, work);
    });
  }

  /// Does the same for an action that unlocks or locks the store.
  template <class Action>
  OSStatus unlock(Action&& action) {
    return alone([&](SecFileSession& session) {
      action(session);
      mayAsk_ = true;
    });
  }
  void lock() {
    static_cast<void>(alone([&](SecFileSession& session) {
      session.lock();
      mayAsk_ = false;
    }));
  }
  void setAsk(Ask ask) {
    const std::lock_guard lock(mutex_);
    ask_ = std::move(ask);
  }

  /// Does the same for an action that needs a store of this format.
  template <class Action>
  OSStatus aloneMigrated(Action&& action) {
    return alone([&](SecFileSession& session) {
      secMigrate(session);
      action(session);
    });
  }

 private:
  void unlockByAsking(SecFileSession& session) {
    if (secStatusOf([&] { session.unlockUnattended(); }) == errSecSuccess || !session.hasPassphrase()) return;
    OSStatus reason = errSecInteractionNotAllowed;
    do {
      const std::optional<SecSecret> passphrase = ask_(reason);
      secRequire(passphrase.has_value(), errSecUserCanceled);
      reason = secStatusOf([&] { session.unlockByPassphrase(passphrase->bytes()); });
    } while (reason == errSecAuthFailed);
    secCheck(reason);
  }

  std::mutex mutex_;
  SecFileSession session_;
  Ask ask_;
  bool mayAsk_ = true;  // unless the host has locked the store
};

namespace {

std::string describe(const SecFileInfo& info) {
  std::string all;
  for (const SecFileSlotInfo& slot : info.keySlots) {
    if (!all.empty()) all += " or ";
    if (slot.protection == SecFileProtection::keyFile) all += "key file " + slot.keyFile;
    if (slot.protection == SecFileProtection::passphrase) all += "passphrase";
    if (slot.protection == SecFileProtection::desktop) all += "desktop";
  }
  return all + (info.locked ? ", locked" : ", unlocked");
}

}  // namespace

SecFileStorage::SecFileStorage(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}

SecFileStorage::~SecFileStorage() = default;

OSStatus SecFileStorage::open(const SecFilePlace& place, Missing missing,
                              std::unique_ptr<SecFileStorage>& storage) {
  return secStatusOf([&] {
    SecFileOpenSite found = secFindSite(place, missing == Missing::make);
    if (missing == Missing::make && !found.folder.judge(found.site.name)) secMakeStore(found);
    storage.reset(new SecFileStorage(std::make_unique<Implementation>(std::move(found))));
  });
}

OSStatus SecFileStorage::make(const SecFilePlace& place, Bytes passphrase,
                              std::unique_ptr<SecFileStorage>& storage) {
  return secStatusOf([&] {
    secRequire(!passphrase.empty(), errSecParam);
    SecFileOpenSite found = secFindSite(place, true);
    const bool isNew = !found.folder.contains(found.site.name) && secMakeStore(found, passphrase);
    secRequire(isNew, errSecDuplicateItem);
    std::unique_ptr<SecFileStorage> made(
        new SecFileStorage(std::make_unique<Implementation>(std::move(found))));
    secCheck(made->unlock(passphrase));
    storage = std::move(made);
  });
}

OSStatus SecFileStorage::transact(Access access, const Work& work) {
  return implementation_->transact(access, work);
}

OSStatus SecFileStorage::copyInfo(SecStorageInfo& info) {
  return secStatusOf([&] {
    SecFileInfo file;
    secCheck(this->info(file));
    info = {file.path, describe(file), static_cast<std::size_t>(file.entries)};
  });
}

void SecFileStorage::setWaitLimit(std::chrono::milliseconds limit) {
  static_cast<void>(implementation_->alone([&](SecFileSession& session) { session.setWaitLimit(limit); }));
}

OSStatus SecFileStorage::unlock() {
  return implementation_->unlock([](SecFileSession& session) { session.unlockUnattended(); });
}

OSStatus SecFileStorage::unlock(Bytes passphrase) {
  return implementation_->unlock([&](SecFileSession& session) { session.unlockByPassphrase(passphrase); });
}

void SecFileStorage::lock() { implementation_->lock(); }

void SecFileStorage::setAsk(Ask ask) { implementation_->setAsk(std::move(ask)); }

OSStatus SecFileStorage::addPassphrase(Bytes passphrase) {
  return implementation_->aloneMigrated(
      [&](SecFileSession& session) { secAddPassphrase(session, passphrase); });
}

OSStatus SecFileStorage::addKeyFile() { return implementation_->aloneMigrated(secAddKeyFile); }

OSStatus SecFileStorage::addDesktop(const SecDesktopOptions& options) {
  return implementation_->aloneMigrated([&](SecFileSession& session) { secAddDesktop(session, options); });
}

OSStatus SecFileStorage::removeSlot(const std::string& name) {
  return implementation_->aloneMigrated([&](SecFileSession& session) { secRemoveSlot(session, name); });
}

OSStatus SecFileStorage::makeRecoveryPassphrase(SecSecret& passphrase) {
  return secStatusOf([&] { passphrase = secMakeRecoveryPassphrase(); });
}

OSStatus SecFileStorage::setPassphrase(Bytes passphrase) {
  return implementation_->aloneMigrated(
      [&](SecFileSession& session) { secSetPassphrase(session, passphrase); });
}

OSStatus SecFileStorage::removePassphrase() { return implementation_->aloneMigrated(secRemovePassphrase); }

OSStatus SecFileStorage::rotate() { return implementation_->aloneMigrated(secRotate); }

OSStatus SecFileStorage::accept() { return implementation_->alone(secAccept); }

OSStatus SecFileStorage::eraseFormerCopies() { return implementation_->alone(secEraseFormerCopies); }

OSStatus SecFileStorage::info(SecFileInfo& info) {
  return implementation_->alone([&](SecFileSession& session) { info = secInfo(session); });
}

OSStatus SecFileStorage::verify() { return implementation_->alone(secVerify); }

OSStatus SecFileStorage::salvage(const SecFilePlace& place, Bytes passphrase,
                                 const std::function<void(SecEntry)>& visit) {
  return secStatusOf([&] { secSalvage(secFindSite(place, false), passphrase, visit); });
}

OSStatus SecFileStorage::salvage(const SecFilePlace& place, Bytes passphrase, SecStorage& to,
                                 std::uint64_t& entries) {
  std::uint64_t count = 0;
  const OSStatus status = to.transact(Access::change, [&](SecTransaction& transaction) {
    secCheck(salvage(place, passphrase, [&](const SecEntry& entry) {
      transaction.insert(entry);
      ++count;
    }));
  });
  if (status == errSecSuccess) entries = count;
  return status;
}

OSStatus SecFileStorage::keptKeys(const SecFilePlace& place, std::vector<SecFileKeptKey>& keys) {
  return secStatusOf([&] { keys = secJudgeKeyFiles(place); });
}

OSStatus SecFileStorage::eraseKeptKey(const SecFilePlace& place, const std::string& path) {
  return secStatusOf([&] { secEraseKeyFile(place, path); });
}

OSStatus SecFileStorage::keptDesktopKeys(const SecFilePlace& place, std::vector<SecFileKeptKey>& keys) {
  return secStatusOf([&] { keys = secJudgeItems(place, *secMakeDesktopKeeper()); });
}

OSStatus SecFileStorage::eraseKeptDesktopKey(const SecFilePlace& place, const std::string& number) {
  return secStatusOf([&] { secEraseItem(place, *secMakeDesktopKeeper(), number); });
}
