#include "tool/Failure.h"
#include "tool/KeychainFile.h"
#include "tool/KeychainUpkeep.h"
#include "tool/Terminal.h"

namespace {

/// Opens an existing store, or makes one under a new passphrase; returns null then.
std::unique_ptr<SecFileStorage> openOrMake(const KeychainStore& store) {
  const SecFilePlace place = placeOf(store);
  std::unique_ptr<SecFileStorage> file;
  const OSStatus status = SecFileStorage::open(place, SecFileStorage::Missing::refuse, file);
  if (status == errSecNoSuchKeychain) {
    requireSuccess(SecFileStorage::make(place, readNewPassphrase(store)->bytes(), file),
                   "the keychain cannot be made"_text);
    return nullptr;
  }
  requireSuccess(status, "the keychain cannot be opened"_text);
  return file;
}

/// Says what still opens without the passphrase; returns nothing if nothing does.
std::vector<Message> describeFormerCopies(SecFileStorage& file) {
  std::vector<Message> all;
  for (const SecFileFormerCopy& copy : infoOf(file).formerCopies)
    if (!copy.keyFile.empty()) all.push_back("{1} still opens {2}."_text(copy.keyFile, copy.path));
  if (!all.empty()) all.push_back("Any other copy of the former store needs that key file, too."_text);
  return all;
}

void offerToEraseFormerCopies(SecFileStorage& file) {
  const std::vector<Message> description = describeFormerCopies(file);
  if (description.empty()) return;
  if (!isOnTerminal()) return complain(sentences(description));
  if (agrees("Erase the copy and its key file?"_text, sentences(description)))
    requireSuccess(file.eraseFormerCopies(), "the copy was not erased"_text);
}

int setPassphrase(const KeychainStore& store) {
  const auto file = openOrMake(store);
  if (!file) return 0;
  unlock(*file, store);
  requireSuccess(file->setPassphrase(readNewPassphrase(store)->bytes()),
                 "the passphrase was not changed"_text);
  offerToEraseFormerCopies(*file);
  return 0;
}

int removePassphrase(const KeychainStore& store) {
  requireSuccess(openForUpkeep(store)->removePassphrase(), "the passphrase was not removed"_text);
  return 0;
}

int rotate(const KeychainStore& store) {
  requireSuccess(openForUpkeep(store)->rotate(), "the keys were not changed"_text);
  return 0;
}

}  // namespace

void addKeychainProtection(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store) {
  CLI::App* command = keychain.add_subcommand(
      "passphrase", "Set, change or remove the store's passphrase, or make a store under one");
  const auto removing = std::make_shared<bool>();
  command->add_flag("--remove", *removing, "Protect the store with a key file again");
  command->callback([store, removing, &action] {
    action = [store, removing] { return *removing ? removePassphrase(*store) : setPassphrase(*store); };
  });
  keychain.add_subcommand("rotate", "Give the store new keys, and encrypt every entry anew")
      ->callback([store, &action] { action = [store] { return rotate(*store); }; });
}
