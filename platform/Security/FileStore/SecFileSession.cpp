#include <Security/FileStore/SecFileSession.h>

#include <utility>

#include <Security/FileStore/SecFileKeyFile.h>

SecFileSession::SecFileSession(std::string path, std::string keyFolder)
    : path_(std::move(path)), keyFolder_(std::move(keyFolder)) {
  static_cast<void>(connection());
  unlockWhereNothingIsAsked();
}

SecFileConnection& SecFileSession::connection() {
  // What was opened before a fork belongs to the parent: it is not even closed, for that touches the file.
  if (connection_ && !connection_->isOurs()) static_cast<void>(connection_.release());
  if (connection_ && !connection_->isCurrent()) connection_.reset();
  if (connection_) return *connection_;
  connection_ = std::make_unique<SecFileConnection>(path_, waitLimit_);
  damaged_ = false;
  if (!keys_ || keysFor_ == connection_->store()) return *connection_;
  keys_.reset();
  unlockWhereNothingIsAsked();
  return *connection_;
}

void SecFileSession::setWaitLimit(std::chrono::milliseconds limit) {
  waitLimit_ = limit;
  if (connection_) connection_->database().setWaitLimit(limit);
}

SecFileContext SecFileSession::context() {
  SecFileConnection& current = connection();
  secRequire(keys_ != nullptr, errSecInteractionNotAllowed);
  return {current.database(), *keys_, current.store()};
}

void SecFileSession::unlockWhereNothingIsAsked() {
  const SecFileSlot& slot = connection_->slotAtOpening();
  if (slot.protection == SecFileProtection::keyFile)
    unwrap(slot, secReadKeyFile(keyFolder_, connection_->store()).bytes());
}

SecFileSlot SecFileSession::currentSlot() {
  SecFileConnection& current = connection();
  const SecFileUnitOfWork reading(current.database(), false);
  current.database().checkSchema();
  return current.readSlot();
}

void SecFileSession::unlockByKeyFile() {
  const SecFileSlot slot = currentSlot();
  secRequire(slot.protection == SecFileProtection::keyFile, errSecInteractionNotAllowed);
  unwrap(slot, secReadKeyFile(keyFolder_, connection_->store()).bytes());
}

void SecFileSession::unlockByPassphrase(SecView passphrase) {
  const SecFileSlot slot = currentSlot();
  secRequire(slot.protection == SecFileProtection::passphrase, errSecAuthFailed);
  unwrap(slot, passphrase);
}

void SecFileSession::unwrap(const SecFileSlot& slot, SecView credential) {
  keysFor_ = connection_->store();
  keys_ = std::make_unique<SecFileKeys>(secUnwrapKey(slot, credential, keysFor_), keysFor_);
}

void SecFileSession::setPassphrase(SecView passphrase) {
  secRequire(!passphrase.empty(), errSecParam);
  const SecFileContext context = this->context();
  const SecStoreID store = context.store;
  const SecFileSlot slot = secWrapKey(SecFileProtection::passphrase, passphrase, store, context.keys.data());
  SecFileUnitOfWork unit = changeProtection(store);
  connection_->writeSlot(slot);
  unit.commit();
  // The key file opens nothing any more; one that cannot be removed does no harm.
  static_cast<void>(secStatusOf([&] { removeIdleKeyFile(store); }));
}

void SecFileSession::removePassphrase() {
  const SecStoreID store = context().store;
  SecFileUnitOfWork unit = changeProtection(store);
  secRequire(connection_->readSlot().protection == SecFileProtection::passphrase, errSecParam);
  const SecSecret key = secMakeKeyFile(keyFolder_, store);
  connection_->writeSlot(secWrapKey(SecFileProtection::keyFile, key.bytes(), store, keys_->data()));
  unit.commit();
}

/// Begins a transaction in which the slot, and with it what key file is in use, is not changed by others.
SecFileUnitOfWork SecFileSession::changeProtection(const SecStoreID& store) {
  SecFileConnection& current = connection();
  // Another store may have been put in place while a key was derived: that one has another data key.
  secRequire(current.store() == store && keysFor_ == store, errSecBusy);
  requireChangeable();
  return SecFileUnitOfWork(current.database(), true);
}

void SecFileSession::removeIdleKeyFile(const SecStoreID& store) {
  const SecFileUnitOfWork unit = changeProtection(store);
  if (connection_->readSlot().protection == SecFileProtection::passphrase)
    secRemoveFile(secKeyFilePath(keyFolder_, store));
}
