#include <Security/SecFileStorage.h>

#include <mutex>
#include <optional>
#include <utility>

#include <Security/SecFileConnection.h>
#include <Security/SecFileTransaction.h>

class SecFileStorage::Implementation {
 public:
  Implementation(std::string path, std::string keyFolder)
      : path_(std::move(path)), keyFolder_(std::move(keyFolder)) {}

  /// Runs `action`, which gives a status, with the store to itself.
  template <class Action>
  OSStatus alone(Action&& action) {
    const std::lock_guard lock(mutex_);
    const OSStatus status = secGuarded(action);
    if (status == errSecDecode) damaged_ = true;
    return status;
  }

  void connectFirst();
  OSStatus transact(Access access, const Work& work);
  void unlockByKeyFile();
  void unlockByPassphrase(SecView passphrase);
  void lock();
  void setPassphrase(SecView passphrase);
  void removePassphrase();
  void info(SecFileInfo& info);
  void verify();
  void salvage(const std::function<void(SecEntry)>& visit);

 private:
  SecFileConnection& connection();
  SecFileContext context();
  SecFileSlot currentSlot();
  void unlockWhereNothingIsAsked();
  void unwrap(const SecFileSlot& slot, SecView credential);
  SecFileUnitOfWork changeProtection();
  void removeIdleKeyFile();

  const std::string path_;
  const std::string keyFolder_;
  std::mutex mutex_;
  std::unique_ptr<SecFileConnection> connection_;
  std::unique_ptr<SecFileKeys> keys_;
  SecStoreID keysFor_{};
  bool damaged_ = false;
};

namespace {

OSStatus succeed() { return errSecSuccess; }

/// Splits a path into a folder without links and the name in it.
std::string resolve(const SecFilePlace& place, SecFileStorage::Missing missing) {
  const std::size_t slash = place.store.rfind('/');
  const std::string folder = slash == place.store.npos ? "." : place.store.substr(0, slash + 1);
  const std::string name = slash == place.store.npos ? place.store : place.store.substr(slash + 1);
  secRequire(!name.empty(), errSecParam);
  auto resolved = secResolveFolder(folder, place.ownsFolder);
  if (!resolved && place.ownsFolder && missing == SecFileStorage::Missing::make) {
    secMakePrivateFolder(folder.substr(0, folder.size() - 1));
    resolved = secResolveFolder(folder, true);
  }
  secRequire(resolved.has_value(), errSecNoSuchKeychain);
  return *resolved + "/" + name;
}

std::string describe(const SecFileInfo& info) {
  const bool byKeyFile = info.protection == SecFileProtection::keyFile;
  return (byKeyFile ? "key file " + info.keyFile : "passphrase") + (info.locked ? ", locked" : ", unlocked");
}

/// Runs `action` for a part of a damaged store; true unless that part is damaged.
template <class Action>
bool holds(Action&& action) {
  const OSStatus status = secGuarded([&] { return action(), succeed(); });
  secRequire(status == errSecSuccess || status == errSecDecode, status);
  return status == errSecSuccess;
}

}  // namespace

/// The connection to the file that is there now, opened anew where a fork or another file made it stale.
SecFileConnection& SecFileStorage::Implementation::connection() {
  // What was opened before a fork belongs to the parent: it is not even closed, for that touches the file.
  if (connection_ && !connection_->isOurs()) static_cast<void>(connection_.release());
  if (connection_ && !connection_->isCurrent()) connection_.reset();
  if (connection_) return *connection_;
  connection_ = std::make_unique<SecFileConnection>(path_);
  damaged_ = false;
  if (!keys_ || keysFor_ == connection_->store()) return *connection_;
  keys_.reset();
  unlockWhereNothingIsAsked();
  return *connection_;
}

SecFileContext SecFileStorage::Implementation::context() {
  SecFileConnection& current = connection();
  secRequire(keys_ != nullptr, errSecInteractionNotAllowed);
  return {current.database(), *keys_, current.store()};
}

void SecFileStorage::Implementation::connectFirst() {
  static_cast<void>(connection());
  unlockWhereNothingIsAsked();
}

void SecFileStorage::Implementation::unlockWhereNothingIsAsked() {
  const SecFileSlot& slot = connection_->slotAtOpening();
  if (slot.protection == SecFileProtection::keyFile)
    unwrap(slot, secReadKeyFile(keyFolder_, connection_->store()).bytes());
}

OSStatus SecFileStorage::Implementation::transact(Access access, const Work& work) {
  const SecFileContext store = context();
  secRequire(!damaged_ || access == Access::read, errSecDecode);
  SecFileUnitOfWork unit(store.database, access == Access::change);
  store.database.checkSchema();
  SecFileTransaction transaction(store, access);
  const OSStatus status = work(transaction);
  if (status != errSecSuccess) return status;
  transaction.finish();
  unit.commit();
  return errSecSuccess;
}

SecFileSlot SecFileStorage::Implementation::currentSlot() {
  SecFileConnection& current = connection();
  const SecFileUnitOfWork reading(current.database(), false);
  current.database().checkSchema();
  return current.readSlot();
}

void SecFileStorage::Implementation::unlockByKeyFile() {
  const SecFileSlot slot = currentSlot();
  secRequire(slot.protection == SecFileProtection::keyFile, errSecInteractionNotAllowed);
  unwrap(slot, secReadKeyFile(keyFolder_, connection_->store()).bytes());
}

void SecFileStorage::Implementation::unlockByPassphrase(SecView passphrase) {
  const SecFileSlot slot = currentSlot();
  secRequire(slot.protection == SecFileProtection::passphrase, errSecAuthFailed);
  unwrap(slot, passphrase);
}

void SecFileStorage::Implementation::unwrap(const SecFileSlot& slot, SecView credential) {
  keysFor_ = connection_->store();
  keys_ = std::make_unique<SecFileKeys>(secUnwrapKey(slot, credential, keysFor_), keysFor_);
}

void SecFileStorage::Implementation::lock() { keys_.reset(); }

void SecFileStorage::Implementation::setPassphrase(SecView passphrase) {
  secRequire(!passphrase.empty(), errSecParam);
  const SecFileContext store = context();
  const SecFileSlot slot =
      secWrapKey(SecFileProtection::passphrase, passphrase, store.store, store.keys.data());
  SecFileUnitOfWork unit = changeProtection();
  connection_->writeSlot(slot);
  unit.commit();
  // The key file opens nothing any more; one that cannot be removed does no harm.
  static_cast<void>(secGuarded([&] { return removeIdleKeyFile(), succeed(); }));
}

void SecFileStorage::Implementation::removePassphrase() {
  const SecFileContext store = context();
  SecFileUnitOfWork unit = changeProtection();
  secRequire(connection_->readSlot().protection == SecFileProtection::passphrase, errSecParam);
  const SecSecret key = secMakeKeyFile(keyFolder_, store.store);
  connection_->writeSlot(secWrapKey(SecFileProtection::keyFile, key.bytes(), store.store, store.keys.data()));
  unit.commit();
}

/// Begins a transaction in which the slot, and with it what key file is in use, is not changed by others.
SecFileUnitOfWork SecFileStorage::Implementation::changeProtection() {
  secRequire(!damaged_, errSecDecode);
  return SecFileUnitOfWork(connection().database(), true);
}

void SecFileStorage::Implementation::removeIdleKeyFile() {
  const SecFileUnitOfWork unit = changeProtection();
  if (connection_->readSlot().protection == SecFileProtection::passphrase)
    secRemoveFile(secKeyFilePath(keyFolder_, connection_->store()));
}

void SecFileStorage::Implementation::info(SecFileInfo& info) {
  SecFileConnection& current = connection();
  info.path = path_;
  const SecFileUnitOfWork reading(current.database(), false);
  current.database().checkSchema();
  info.protection = current.readSlot().protection;
  info.keyFile =
      info.protection == SecFileProtection::keyFile ? secKeyFilePath(keyFolder_, current.store()) : "";
  info.locked = keys_ == nullptr;
  info.entries = secCountEntries(current.database());
}

void SecFileStorage::Implementation::verify() {
  const SecFileContext store = context();
  const SecFileUnitOfWork reading(store.database, false);
  store.database.checkSchema();
  SecFileTransaction(store, Access::read).verify();
}

void SecFileStorage::Implementation::salvage(const std::function<void(SecEntry)>& visit) {
  const SecFileContext store = context();
  const SecFileUnitOfWork reading(store.database, false);
  auto rows = store.database.use("SELECT lines FROM directory");
  while (rows.step()) {
    SecFileBucket lines;
    static_cast<void>(holds([&] { lines = secDecodeBucket(rows.blob(0)); }));
    for (const SecFileLine& line : lines) {
      SecEntry entry;
      if (holds([&] { entry = secReadEntry(store, line); })) visit(std::move(entry));
    }
  }
}

SecFileStorage::SecFileStorage(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}

SecFileStorage::~SecFileStorage() = default;

OSStatus SecFileStorage::open(const SecFilePlace& place, Missing missing,
                              std::unique_ptr<SecFileStorage>& storage) {
  return secGuarded([&] {
    const std::string path = resolve(place, missing);
    if (missing == Missing::make && !secJudgeFile(path)) secMakeStore(path, place.keyFolder);
    auto implementation = std::make_unique<Implementation>(path, place.keyFolder);
    implementation->connectFirst();
    storage.reset(new SecFileStorage(std::move(implementation)));
    return succeed();
  });
}

OSStatus SecFileStorage::transact(Access access, const Work& work) {
  return implementation_->alone([&] { return implementation_->transact(access, work); });
}

OSStatus SecFileStorage::copyInfo(SecStorageInfo& info) {
  return secGuarded([&] {
    SecFileInfo file;
    const OSStatus status = this->info(file);
    secRequire(status == errSecSuccess, status);
    info = {file.path, describe(file), static_cast<std::size_t>(file.entries)};
    return succeed();
  });
}

OSStatus SecFileStorage::unlock() {
  return implementation_->alone([&] { return implementation_->unlockByKeyFile(), succeed(); });
}

OSStatus SecFileStorage::unlock(Bytes passphrase) {
  return implementation_->alone([&] { return implementation_->unlockByPassphrase(passphrase), succeed(); });
}

void SecFileStorage::lock() {
  static_cast<void>(implementation_->alone([&] { return implementation_->lock(), succeed(); }));
}

OSStatus SecFileStorage::setPassphrase(Bytes passphrase) {
  return implementation_->alone([&] { return implementation_->setPassphrase(passphrase), succeed(); });
}

OSStatus SecFileStorage::removePassphrase() {
  return implementation_->alone([&] { return implementation_->removePassphrase(), succeed(); });
}

OSStatus SecFileStorage::info(SecFileInfo& info) {
  return implementation_->alone([&] { return implementation_->info(info), succeed(); });
}

OSStatus SecFileStorage::verify() {
  return implementation_->alone([&] { return implementation_->verify(), succeed(); });
}

OSStatus SecFileStorage::salvage(const std::function<void(SecEntry)>& visit) {
  return implementation_->alone([&] { return implementation_->salvage(visit), succeed(); });
}
