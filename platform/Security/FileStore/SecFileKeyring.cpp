#include <Security/FileStore/SecFileKeyring.h>

#include <utility>

#include <Security/FileStore/SecFileKeyFile.h>

const SecFileKeys& SecFileKeyring::keys() const {
  secRequire(opened_.has_value(), errSecInteractionNotAllowed);
  return opened_->keys;
}

const SecSecret* SecFileKeyring::keyOf(const SecFileSlot& slot) const {
  return opened_ && opened_->slot == slot.number ? &opened_->slotKey : nullptr;
}

void SecFileKeyring::adopt(SecFileKeys keys, const SecTag& slot, SecSecret slotKey) {
  opened_.emplace(Opened{std::move(keys), slot, std::move(slotKey)});
}

void SecFileKeyring::open(const SecFileHeader& header, const SecFileSlot& slot, SecSecret slotKey) {
  SecSecret dataKey = secOpenSlot(slot, slotKey.bytes(), header.keyID);
  adopt(SecFileKeys(std::move(dataKey), header.keyID), slot.number, std::move(slotKey));
}

void SecFileKeyring::openByKeyFile(const SecFileHeader& header, const SecFileFolder* keyFolder) {
  OSStatus failure = errSecInteractionNotAllowed;
  for (const SecFileSlot& slot : header.slots) {
    if (slot.protection != SecFileProtection::keyFile) continue;
    const OSStatus status = secStatusOf([&] {
      secRequire(keyFolder != nullptr, errSecDataNotAvailable);
      const auto key = secReadKeyFile(*keyFolder, secKeyFileName(slot.number));
      secRequire(key.has_value(), errSecDataNotAvailable);
      open(header, slot, secDeriveSlotKey(slot, key->secret.bytes()));
    });
    if (status == errSecSuccess) return;
    if (failure == errSecInteractionNotAllowed) failure = status;
  }
  throw SecFailure{failure};
}

void SecFileKeyring::openByPassphrase(const SecFileHeader& header, SecView passphrase) {
  for (const SecFileSlot& slot : header.slots) {
    if (slot.protection != SecFileProtection::passphrase) continue;
    const OSStatus status = secStatusOf([&] { open(header, slot, secDeriveSlotKey(slot, passphrase)); });
    if (status == errSecSuccess) return;
    secRequire(status == errSecAuthFailed, status);
  }
  throw SecFailure{errSecAuthFailed};
}

void SecFileKeyring::openByDesktop(const SecFileHeader& header, SecFileKeeper& desktop) {
  OSStatus failure = errSecInteractionNotAllowed;
  for (const SecFileSlot& slot : header.slots) {
    if (slot.protection != SecFileProtection::desktop) continue;
    failure = secStatusOf([&] {
      for (const SecSecret& secret : desktop.read(secHexadecimal(slot.number)))
        if (secStatusOf([&] { open(header, slot, secDeriveSlotKey(slot, secret.bytes())); }) == errSecSuccess)
          return;
      throw SecFailure{errSecAuthFailed};
    });
    if (failure == errSecSuccess) return;
  }
  throw SecFailure{failure};
}

void SecFileKeyring::follow(const SecFileHeader& header, const SecFileFolder* keyFolder) {
  if (isLocked() || opened_->keys.id() == header.keyID) return;
  Opened former = std::move(*opened_);
  opened_.reset();
  for (const SecFileSlot& slot : header.slots)
    if (slot.number == former.slot) return open(header, slot, std::move(former.slotKey));
  openByKeyFile(header, keyFolder);
}
