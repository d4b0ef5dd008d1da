#include "tool/KeychainFile.h"

#include <algorithm>

#include "tool/Failure.h"
#include "tool/Terminal.h"

namespace {

bool hasPassphrase(const SecFileInfo& info) {
  return std::any_of(info.keySlots.begin(), info.keySlots.end(), [](const SecFileSlotInfo& slot) {
    return slot.protection == SecFileProtection::passphrase;
  });
}

}  // namespace

SecFilePlace placeOf(const KeychainStore& store) {
  if (store.isInMemory()) throw Failure("a keychain in memory has no file"_text);
  if (store.isOnDesktop()) throw Failure("the desktop's keychain has no file of its own"_text);
  SecFilePlace place;
  requireSuccess(store.place.empty() ? secDefaultFilePlace(place) : secFilePlaceAt(store.place, place),
                 "the keychain cannot be located"_text);
  place.allowSharedFolder = store.allowSharedFolder;
  return place;
}

std::unique_ptr<SecFileStorage> openStoreFile(const KeychainStore& store, SecFileStorage::Missing missing) {
  std::unique_ptr<SecFileStorage> file;
  requireSuccess(SecFileStorage::open(placeOf(store), missing, file), "the keychain cannot be opened"_text);
  return file;
}

std::unique_ptr<SecFileStorage> findStoreFile(const KeychainStore& store) {
  std::unique_ptr<SecFileStorage> file;
  const OSStatus status = SecFileStorage::open(placeOf(store), SecFileStorage::Missing::refuse, file);
  if (status != errSecNoSuchKeychain || !store.place.empty())
    requireSuccess(status, "the keychain cannot be opened"_text);
  return file;
}

SecFileInfo infoOf(SecFileStorage& file) {
  SecFileInfo info;
  requireSuccess(file.info(info), "the keychain cannot be read"_text);
  return info;
}

NSRefPtr<NSData> readPassphrase(const KeychainStore& store, const Message& question) {
  if (store.passphraseDescriptor) {
    const NSRefPtr<NSData> line = readSecretLine(*store.passphraseDescriptor);
    if (!line) throw Failure("there is no passphrase to read"_text);
    return line;
  }
  return !store.noPrompt && hasTerminal() ? NSRefPtr<NSData>(askSecret(question)) : nullptr;
}

NSRef<NSData> readNewPassphrase(const KeychainStore& store) {
  const NSRefPtr<NSData> entered = readPassphrase(store, "New passphrase"_text);
  if (!entered) throw Failure("a passphrase must come from a terminal or from --passphrase-fd"_text);
  if (entered->length() == 0) throw Failure("the new passphrase is empty"_text);
  if (store.passphraseDescriptor) return entered;
  if (!entered->isEqual(askSecret("Repeat the new passphrase"_text)))
    throw Failure("the two passphrases differ"_text);
  return entered;
}

void unlock(SecFileStorage& file, const KeychainStore& store) {
  const SecFileInfo info = infoOf(file);
  if (!info.locked || !hasPassphrase(info)) return;
  const NSRefPtr<NSData> entered = readPassphrase(store, "Passphrase of {1}"_text(info.path));
  if (entered) requireSuccess(file.unlock(entered->bytes()), "the keychain cannot be unlocked"_text);
}

std::unique_ptr<SecFileStorage> openForUpkeep(const KeychainStore& store) {
  std::unique_ptr<SecFileStorage> file = openStoreFile(store, SecFileStorage::Missing::refuse);
  unlock(*file, store);
  return file;
}
