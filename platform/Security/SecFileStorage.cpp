#include <Security/SecFileStorage.h>

#include <mutex>
#include <utility>

#include <Security/FileStore/SecFileCreation.h>
#include <Security/FileStore/SecFileKeyFile.h>
#include <Security/FileStore/SecFileSession.h>
#include <Security/FileStore/SecFileTransaction.h>

class SecFileStorage::Implementation {
 public:
  Implementation(std::string path, std::string keyFolder) : session_(std::move(path), std::move(keyFolder)) {}

  /// Runs `action` with exclusive use of the session.
  template <class Action>
  OSStatus alone(Action&& action) {
    const std::lock_guard lock(mutex_);
    const OSStatus status = secStatusOf([&] { action(session_); });
    if (status == errSecDecode) session_.noteDamage();
    return status;
  }

 private:
  std::mutex mutex_;
  SecFileSession session_;
};

namespace {

/// Returns the store's path with links in its folder resolved. Makes a missing folder if the place allows it.
std::string resolve(const SecFilePlace& place, SecFileStorage::Missing missing) {
  const std::size_t slash = place.store.rfind('/');
  const std::string folder = slash == place.store.npos ? "." : place.store.substr(0, slash + 1);
  const std::string name = slash == place.store.npos ? place.store : place.store.substr(slash + 1);
  secRequire(!name.empty(), errSecParam);
  auto resolved = secResolveFolder(folder);
  if (!resolved && place.ownsFolder && missing == SecFileStorage::Missing::make) {
    secMakePrivateFolder(folder.substr(0, folder.size() - 1));
    resolved = secResolveFolder(folder);
  }
  secRequire(resolved && (!place.ownsFolder || secJudgeFolder(*resolved)), errSecNoSuchKeychain);
  return *resolved + "/" + name;
}

std::string describe(const SecFileInfo& info) {
  const bool byKeyFile = info.protection == SecFileProtection::keyFile;
  return (byKeyFile ? "key file " + info.keyFile : "passphrase") + (info.locked ? ", locked" : ", unlocked");
}

/// Runs `action` on a part of a damaged store and returns whether that part is intact.
template <class Action>
bool holds(Action&& action) {
  const OSStatus status = secStatusOf(action);
  secRequire(status == errSecSuccess || status == errSecDecode, status);
  return status == errSecSuccess;
}

void transactIn(SecFileSession& session, SecStorage::Access access, const SecStorage::Work& work) {
  const SecFileContext store = session.context();
  if (access == SecStorage::Access::change) session.requireChangeable();
  SecFileUnitOfWork unit(store.database, access == SecStorage::Access::change);
  store.database.checkSchema();
  SecFileTransaction transaction(store, access);
  work(transaction);
  transaction.finish();
  if (access == SecStorage::Access::change) unit.commit();
}

void readInfo(SecFileSession& session, SecFileInfo& info) {
  SecFileConnection& connection = session.connection();
  const SecFileUnitOfWork reading(connection.database(), false);
  connection.database().checkSchema();
  info.path = session.path();
  info.protection = connection.readSlot().protection;
  info.keyFile = info.protection == SecFileProtection::keyFile
                     ? secKeyFilePath(session.keyFolder(), connection.store())
                     : "";
  info.locked = session.isLocked();
  info.entries = secCountEntries(connection.database());
}

void verifyAll(SecFileSession& session) {
  const SecFileContext store = session.context();
  const SecFileUnitOfWork reading(store.database, false);
  store.database.checkSchema();
  SecFileTransaction(store, SecStorage::Access::read).verify();
}

void salvageFrom(SecFileSession& session, const std::function<void(SecEntry)>& visit) {
  const SecFileContext store = session.context();
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

}  // namespace

SecFileStorage::SecFileStorage(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}

SecFileStorage::~SecFileStorage() = default;

OSStatus SecFileStorage::open(const SecFilePlace& place, Missing missing,
                              std::unique_ptr<SecFileStorage>& storage) {
  return secStatusOf([&] {
    const std::string path = resolve(place, missing);
    if (missing == Missing::make && !secJudgeFile(path)) secMakeStore(path, place.keyFolder);
    storage.reset(new SecFileStorage(std::make_unique<Implementation>(path, place.keyFolder)));
  });
}

OSStatus SecFileStorage::transact(Access access, const Work& work) {
  return implementation_->alone([&](SecFileSession& session) { transactIn(session, access, work); });
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
  return implementation_->alone([](SecFileSession& session) { session.unlockByKeyFile(); });
}

OSStatus SecFileStorage::unlock(Bytes passphrase) {
  return implementation_->alone([&](SecFileSession& session) { session.unlockByPassphrase(passphrase); });
}

void SecFileStorage::lock() {
  static_cast<void>(implementation_->alone([](SecFileSession& session) { session.lock(); }));
}

OSStatus SecFileStorage::setPassphrase(Bytes passphrase) {
  return implementation_->alone([&](SecFileSession& session) { session.setPassphrase(passphrase); });
}

OSStatus SecFileStorage::removePassphrase() {
  return implementation_->alone([](SecFileSession& session) { session.removePassphrase(); });
}

OSStatus SecFileStorage::info(SecFileInfo& info) {
  return implementation_->alone([&](SecFileSession& session) { readInfo(session, info); });
}

OSStatus SecFileStorage::verify() { return implementation_->alone(verifyAll); }

OSStatus SecFileStorage::salvage(const std::function<void(SecEntry)>& visit) {
  return implementation_->alone([&](SecFileSession& session) { salvageFrom(session, visit); });
}
