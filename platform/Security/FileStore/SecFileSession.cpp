#include <Security/FileStore/SecFileSession.h>

#include <algorithm>
#include <utility>

#include <Security/FileStore/SecFileCredential.h>
#include <Security/FileStore/SecFileFormat.h>

namespace {

bool hasSlot(const SecFileHeader& header, SecFileProtection protection) {
  return std::any_of(header.slots.begin(), header.slots.end(),
                     [&](const SecFileSlot& slot) { return slot.protection == protection; });
}

}  // namespace

SecFileSession::SecFileSession(SecFileOpenSite site, std::unique_ptr<SecFileKeeper> desktop)
    : site_(std::move(site.site)),
      desktop_(std::move(desktop)),
      connection_(std::make_unique<SecFileConnection>(std::move(site.folder), site_.name, waitLimit_)),
      watch_(site_.folder + '/' + site_.name) {
  const OSStatus status = secStatusOf([&] { unlockUnattended(); });
  const bool isUnlocked = status == errSecSuccess || status == errSecInteractionNotAllowed;
  secRequire(isUnlocked || (status != errSecDecode && mayBeUnlocked()), status);
}

/// Returns no value for a store of format 1.
std::optional<SecFileHeader> SecFileSession::readHeader() {
  SecFileWork work(*this, false, SecFileWork::Trust::nothing);
  if (work.former()) return std::nullopt;
  return work.header();
}

bool SecFileSession::hasPassphrase() {
  const auto header = readHeader();
  return header ? hasSlot(*header, SecFileProtection::passphrase)
                : former_->protection() == SecFileProtection::passphrase;
}

/// Whether something other than a key file opens the store.
bool SecFileSession::mayBeUnlocked() {
  const auto header = readHeader();
  return header &&
         (hasSlot(*header, SecFileProtection::passphrase) || hasSlot(*header, SecFileProtection::desktop));
}

SecFileConnection& SecFileSession::connection() {
  // What was opened before a fork belongs to the parent: not even closing it is safe, as that touches the
  // file.
  if (connection_ && !connection_->isOurs()) static_cast<void>(connection_.release());
  if (connection_ && !connection_->isCurrent()) connection_.reset();
  if (connection_) return *connection_;
  connection_ = std::make_unique<SecFileConnection>(site_.openFolder(), site_.name, waitLimit_);
  damaged_ = false;
  return *connection_;
}

void SecFileSession::setWaitLimit(std::chrono::milliseconds limit) {
  waitLimit_ = limit;
  if (connection_) connection_->database().setWaitLimit(limit);
}

const SecFileFolder* SecFileSession::keyFolder(bool makes) {
  const auto open = [&] {
    if (!keyFolder_) keyFolder_ = site_.openKeyFolder();
    if (!keyFolder_ && makes) keyFolder_.emplace(site_.makeKeyFolder());
  };
  static_cast<void>(secStatusOf(open));
  return keyFolder_ ? &*keyFolder_ : nullptr;
}

void SecFileSession::unlockUnattended() {
  SecFileHeader header;
  {
    SecFileWork work(*this, false, SecFileWork::Trust::nothing);
    if (work.former()) return openFormerUnattended();
    header = work.header();
  }
  // Outside of the transaction, as it may take long.
  openUnattended(header);
  SecFileWork work(*this, false, SecFileWork::Trust::nothing);
  verifySeal(work);
}

void SecFileSession::openUnattended(const SecFileHeader& header) {
  OSStatus failure = errSecInteractionNotAllowed;
  const auto attempt = [&](auto&& open) {
    const OSStatus status = secStatusOf(open);
    if (failure == errSecInteractionNotAllowed) failure = status;
    return status == errSecSuccess;
  };
  const bool isOpen = attempt([&] {
                        keyFolder_ = site_.openKeyFolder();
                        keyring_.openByKeyFile(header, keyFolder_ ? &*keyFolder_ : nullptr);
                      }) ||
                      attempt([&] { keyring_.openByDesktop(header, *desktop_); }) ||
                      attempt([&] { openByCredential(header); });
  if (!isOpen) throw SecFailure{failure};
}

void SecFileSession::openByCredential(const SecFileHeader& header) {
  secRequire(hasSlot(header, SecFileProtection::passphrase), errSecInteractionNotAllowed);
  const auto passphrase = secReadCredential(site_.credentialFolder);
  secRequire(passphrase.has_value(), errSecInteractionNotAllowed);
  keyring_.openByPassphrase(header, passphrase->bytes());
}

void SecFileSession::openByKeyFile(SecFileWork& work) {
  keyFolder_ = site_.openKeyFolder();
  const SecFileFolder* const folder = keyFolder_ ? &*keyFolder_ : nullptr;
  if (work.former()) return openFormerByKeyFile(folder);
  keyring_.openByKeyFile(work.header(), folder);
  verifySeal(work);
}

void SecFileSession::openFormerUnattended() {
  if (former_->protection() == SecFileProtection::keyFile) {
    keyFolder_ = site_.openKeyFolder();
    return openFormerByKeyFile(keyFolder_ ? &*keyFolder_ : nullptr);
  }
  auto passphrase = secReadCredential(site_.credentialFolder);
  secRequire(passphrase.has_value(), errSecInteractionNotAllowed);
  former_->unlock(std::move(*passphrase));
}

void SecFileSession::openFormerByKeyFile(const SecFileFolder* folder) {
  secRequire(former_->protection() == SecFileProtection::keyFile, errSecInteractionNotAllowed);
  secRequire(folder != nullptr, errSecDataNotAvailable);
  auto key = folder->read(former_->keyFileName(), secKeySize + 1);
  secRequire(key.has_value(), errSecDataNotAvailable);
  secRequire(key->bytes().size() == secKeySize, errSecAuthFailed);
  former_->unlock(std::move(*key));
}

void SecFileSession::unlockByPassphrase(SecView passphrase) {
  SecFileHeader header;
  {
    SecFileWork work(*this, false, SecFileWork::Trust::nothing);
    if (auto* former = work.former()) {
      secRequire(former->protection() == SecFileProtection::passphrase, errSecAuthFailed);
      return former->unlock(SecSecret(passphrase));
    }
    header = work.header();
  }
  // Outside of the transaction, as it takes long.
  keyring_.openByPassphrase(header, passphrase);
  SecFileWork work(*this, false, SecFileWork::Trust::nothing);
  verifySeal(work);
}

/// Only a seal that holds shows that the store's owner wrote what was opened.
void SecFileSession::verifySeal(SecFileWork& work) {
  try {
    static_cast<void>(work.seal());
  } catch (const SecFailure&) {
    keyring_.lock();
    throw;
  }
}

void SecFileSession::lock() {
  keyring_.lock();
  former_.reset();
  if (connection_) connection_->forgetSeal();
}

/// Reads who can open the store, which other processes may have changed, and brings the keys up to date.
void SecFileSession::load(SecFileWork& work, bool mayBeLocked) {
  if (work.database().format() == secFileFormat1) {
    const auto before = std::exchange(former_, std::make_unique<SecFormat1Store>(work.database()));
    if (!before || before->isLocked()) return;
    former_->unlockLike(*before);
    if (former_->isLocked() && former_->protection() == SecFileProtection::keyFile) openByKeyFile(work);
    return;
  }
  const auto before = std::exchange(former_, nullptr);
  if (before && !before->isLocked()) return openMigrated(*before, work);
  if (keyring_.isLocked() || keyring_.keys().id() == work.header().keyID) return;
  const OSStatus status = secStatusOf([&] {
    keyFolder_ = site_.openKeyFolder();
    keyring_.follow(work.header(), keyFolder());
  });
  secRequire(mayBeLocked || status == errSecSuccess, status);
}

/// Another process has migrated the store.
void SecFileSession::openMigrated(const SecFormat1Store& before, SecFileWork& work) {
  if (before.protection() == SecFileProtection::keyFile) return openByKeyFile(work);
  keyring_.openByPassphrase(work.header(), before.secret().bytes());
  verifySeal(work);
}

SecFileWork::SecFileWork(SecFileSession& session, bool writing, Trust trust)
    : session_(session),
      connection_(session.connection()),
      unit_(connection_.database(), writing),
      writing_(writing) {
  session_.load(*this, trust == Trust::nothing);
  if (trust != Trust::nothing && !former()) believe(trust);
}

SecFileWork::~SecFileWork() {
  if (writing_) connection_.forgetSeal();
}

void SecFileWork::believe(Trust trust) {
  const SecFileSeal& verified = seal();
  if (trust != Trust::all) return;
  const SecFileFolder* const folder = session_.keyFolder();
  secRequire(!session_.watch_.hasGoneBack(header().store, verified, folder), errSecRolledBack);
  if (!writing_) session_.watch_.remember(header().store, verified, folder);
}

void SecFileWork::commit(const SecStoreID& store, const SecFileSeal& committed) {
  unit_.commit();
  session_.watch_.remember(store, committed, session_.keyFolder(true));
}
