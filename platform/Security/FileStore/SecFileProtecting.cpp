#include <Security/FileStore/SecFileProtecting.h>

#include <algorithm>
#include <utility>

#include <Security/FileStore/SecFileKeyFile.h>
#include <Security/FileStore/SecFileRekey.h>

namespace {

bool hasKeyFile(const SecFileSlot& slot) { return slot.protection == SecFileProtection::keyFile; }
bool hasPassphrase(const SecFileSlot& slot) { return slot.protection == SecFileProtection::passphrase; }

/// One change of who can open a store, in its transaction.
class Change {
 public:
  explicit Change(SecFileSession& session)
      : session_(session), work_(session, true, SecFileWork::Trust::all), header_(work_.header()) {
    session.requireChangeable();
    std::copy_if(header_.slots.begin(), header_.slots.end(), std::back_inserter(keyFiles_), hasKeyFile);
  }

  const std::vector<SecFileSlot>& slots() const { return header_.slots; }
  SecFileOwner owner() { return work_.connection().owner(); }
  /// Whether the new slots may be in the file, even if there was a failure.
  bool isCommitting() const { return isCommitting_; }

  template <class Condition>
  void removeSlots(Condition condition) {
    std::erase_if(header_.slots, condition);
  }
  /// Adds a slot, which opens the store from now on.
  void addSlot(SecFileSlot slot, SecSecret key) {
    opener_ = {slot.number, std::move(key)};
    header_.slots.push_back(std::move(slot));
  }
  void addKeyFile() {
    const SecFileFolder* const folder = session_.keyFolder(true);
    secRequire(folder != nullptr, errSecDataNotAvailable);
    newKeyFile_.emplace(*folder, owner());
    addSlot(newKeyFile_->slot(), newKeyFile_->slotKey().clone());
  }

  /// Adds what was added under the present keys. A copy of another store gets keys of its own, however.
  void add() {
    if (!hasOwnKeyFiles()) return run();
    SecFileSlot& slot = header_.slots.back();
    secRenewSlot(slot, opener_->key.bytes(), session_.keyring().keys());
    sealAndCommit(work_.context());
  }

  void run() {
    if (!opener_) keepOpener();
    if (!hasOwnKeyFiles()) header_.store = secRandomBytes<sizeof(SecStoreID)>();
    SecFileKeys keys;
    header_.keyID = keys.id();
    for (SecFileSlot& slot : header_.slots) giveKey(slot, keys);
    write({work_.database(), keys, header_.store});
    if (opener_)
      session_.keyring().adopt(std::move(keys), opener_->slot, std::move(opener_->key));
    else
      session_.keyring().adopt(std::move(keys));
    eraseKeyFiles();
  }

 private:
  struct Opener {
    SecTag slot;
    SecSecret key;
  };

  bool hasOwnKeyFiles() {
    return std::all_of(keyFiles_.begin(), keyFiles_.end(), [&](auto& slot) { return isOwn(slot); });
  }

  void keepOpener() {
    for (const SecFileSlot& slot : header_.slots)
      if (const SecSecret* key = session_.keyring().keyOf(slot)) opener_ = {slot.number, key->clone()};
  }

  void giveKey(SecFileSlot& slot, const SecFileKeys& keys) {
    if (opener_ && slot.number == opener_->slot) return secRenewSlot(slot, opener_->key.bytes(), keys);
    secResealSlot(slot, session_.keyring().keys(), keys);
  }

  void write(const SecFileContext& to) {
    secRekey(work_.context(), work_.seal(), to);
    sealAndCommit(to);
  }

  void sealAndCommit(const SecFileContext& to) {
    SecFileSeal& seal = work_.seal();
    seal.header = secWriteHeader(to.database, header_);
    ++seal.changes;
    secWriteSeal(to, seal);
    seal = secReadSeal(to);
    // From here on the file may be needed, even if the commit reports a failure.
    if (newKeyFile_) newKeyFile_->keep();
    isCommitting_ = true;
    work_.commit(header_.store, seal);
  }

  /// Whether the slot's key file was made for this very store.
  bool isOwn(const SecFileSlot& slot) {
    bool own = false;
    const SecFileFolder* const folder = session_.keyFolder();
    static_cast<void>(secStatusOf([&] {
      const auto key = folder ? secReadKeyFile(*folder, secKeyFileName(slot.number)) : std::nullopt;
      own = key && key->owner == owner();
    }));
    return own;
  }

  /// A file that cannot be erased does no harm: it opens nothing any more.
  void eraseKeyFiles() {
    for (const SecFileSlot& slot : keyFiles_) {
      const auto isSame = [&](const SecFileSlot& other) { return other.number == slot.number; };
      if (std::any_of(header_.slots.begin(), header_.slots.end(), isSame) || !isOwn(slot)) continue;
      static_cast<void>(secStatusOf([&] { session_.keyFolder()->erase(secKeyFileName(slot.number)); }));
    }
  }

  SecFileSession& session_;
  SecFileWork work_;
  SecFileHeader header_;
  std::vector<SecFileSlot> keyFiles_;  // the slots of key files as they were
  std::optional<SecFileNewKeyFile> newKeyFile_;
  // The slot that opens the store after the change; no value if the one that did so was removed.
  std::optional<Opener> opener_;
  bool isCommitting_ = false;
};

}  // namespace

void secSetPassphrase(SecFileSession& session, SecView passphrase) {
  secRequire(!passphrase.empty(), errSecParam);
  secRequire(!session.isLocked(), errSecInteractionNotAllowed);
  const SecFileSlot slot = secMakeSlot(SecFileProtection::passphrase);
  SecSecret key = secDeriveSlotKey(slot, passphrase);  // before the transaction, as it takes long
  Change change(session);
  change.removeSlots([&](const SecFileSlot& other) {
    return hasKeyFile(other) || (hasPassphrase(other) && session.keyring().keyOf(other));
  });
  change.addSlot(slot, std::move(key));
  change.run();
}

void secRemovePassphrase(SecFileSession& session) {
  Change change(session);
  secRequire(std::any_of(change.slots().begin(), change.slots().end(), hasPassphrase), errSecParam);
  change.removeSlots([](const SecFileSlot& slot) { return hasKeyFile(slot) || hasPassphrase(slot); });
  change.addKeyFile();
  change.run();
}

void secAddPassphrase(SecFileSession& session, SecView passphrase) {
  secRequire(!passphrase.empty(), errSecParam);
  const SecFileSlot slot = secMakeSlot(SecFileProtection::passphrase);
  SecSecret key = secDeriveSlotKey(slot, passphrase);
  Change change(session);
  change.addSlot(slot, std::move(key));
  change.add();
}

void secAddKeyFile(SecFileSession& session) {
  Change change(session);
  change.addKeyFile();
  change.add();
}

void secAddDesktop(SecFileSession& session, const SecDesktopOptions& options) {
  secRequire(!session.isLocked(), errSecInteractionNotAllowed);
  const SecFileSlot slot = secMakeSlot(SecFileProtection::desktop);
  const SecSecret secret = secRandomSecret(secKeySize);
  const std::string name = secHexadecimal(slot.number);
  const SecFileOwner owner = session.connection().owner();
  // Nobody is to take the item for a leftover before the store refers to it.
  std::optional<SecFileKeyLock> lock;
  if (const SecFileFolder* folder = session.keyFolder(true))
    lock.emplace(*folder, SecFileKeyLock::Purpose::make);
  session.desktop().write(name, owner, secret, options);  // before the transaction, as it may take long
  bool isCommitting = false;
  const OSStatus status = secStatusOf([&] {
    Change change(session);
    secRequire(change.owner() == owner, errSecBusy);
    change.addSlot(slot, secDeriveSlotKey(slot, secret.bytes()));
    const OSStatus added = secStatusOf([&] { change.add(); });
    isCommitting = change.isCommitting();
    secCheck(added);
  });
  if (!isCommitting) static_cast<void>(secStatusOf([&] { session.desktop().erase(name, owner); }));
  secCheck(status);
}

void secRemoveSlot(SecFileSession& session, const std::string& number) {
  const auto isMeant = [&](const SecFileSlot& slot) { return secHexadecimal(slot.number) == number; };
  Change change(session);
  const auto& slots = change.slots();
  const auto slot = std::find_if(slots.begin(), slots.end(), isMeant);
  secRequire(slot != slots.end(), errSecParam);
  const bool leavesOther = std::any_of(slots.begin(), slots.end(), [&](const SecFileSlot& other) {
    return !isMeant(other) && (hasKeyFile(other) || hasPassphrase(other));
  });
  secRequire(leavesOther, errSecParam);
  const bool isOnDesktop = slot->protection == SecFileProtection::desktop;
  const SecFileOwner owner = change.owner();
  change.removeSlots(isMeant);
  change.run();
  // What stays behind does no harm: it opens nothing any more.
  if (isOnDesktop) static_cast<void>(secStatusOf([&] { session.desktop().erase(number, owner); }));
}

void secRotate(SecFileSession& session) {
  Change change(session);
  const bool hadKeyFile = std::any_of(change.slots().begin(), change.slots().end(), hasKeyFile);
  change.removeSlots(hasKeyFile);
  if (hadKeyFile) change.addKeyFile();
  change.run();
}

void secRenewStaleSlot(SecFileWork& work, const SecFileKeyring& keyring) {
  SecFileHeader header = work.header();
  const auto slot = std::find_if(header.slots.begin(), header.slots.end(), [&](const SecFileSlot& other) {
    return (other.flags & secSlotIsStale) && keyring.keyOf(other);
  });
  if (slot == header.slots.end()) return;
  secRenewSlot(*slot, keyring.keyOf(*slot)->bytes(), keyring.keys());
  work.seal().header = secWriteHeader(work.database(), header);
}
