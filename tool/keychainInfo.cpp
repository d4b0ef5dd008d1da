#include <algorithm>

#include "tool/Failure.h"
#include "tool/KeychainFile.h"
#include "tool/KeychainUpkeep.h"
#include "tool/Printable.h"
#include "tool/StandardStreams.h"

namespace {

/// Returns a line for each copy in a former format and for each key file that no store needs.
std::string leftovers(const KeychainStore& store, SecFileStorage& file) {
  std::string all;
  for (const SecFileFormerCopy& copy : infoOf(file).formerCopies) {
    all += "former copy: " + printable(copy.path);
    all += copy.keyFile.empty() ? "\n" : ", opened by " + printable(copy.keyFile) + '\n';
  }
  std::vector<SecFileKeptKey> keys;
  requireSuccess(SecFileStorage::keptKeys(placeOf(store), keys), "the key files cannot be read"_text);
  for (const SecFileKeptKey& key : keys)
    if (key.use == SecFileKeptKey::Use::leftover)
      all += "leftover: " + printable(key.path) + ", made for " + printable(key.store) + '\n';
  return all;
}

int showInfo(const KeychainStore& store) {
  const std::shared_ptr<SecStorage> storage = store.openAsItIs();
  SecStorageInfo info;
  if (storage)
    requireSuccess(storage->copyInfo(info), "the keychain cannot be read"_text);
  else
    info = {placeOf(store).store, "none; there is no store yet"};
  writeStandardOutput("store: " + printable(info.place) + "\nprotection: " + info.protection +
                      "\nentries: " + std::to_string(info.entries) + '\n');
  if (const auto file = std::dynamic_pointer_cast<SecFileStorage>(storage))
    writeStandardOutput(leftovers(store, *file));
  return 0;
}

int verify(const KeychainStore& store) {
  const auto file = findStoreFile(store);
  if (file) {
    unlock(*file, store);
    requireSuccess(file->verify(), "the keychain failed verification"_text);
  }
  writeStandardOutput("intact, entries: " + std::to_string(file ? infoOf(*file).entries : 0) + '\n');
  return 0;
}

}  // namespace

void addKeychainInfo(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store) {
  keychain
      .add_subcommand("info", "Show which store is used, how it is protected and how many entries it holds")
      ->callback([store, &action] { action = [store] { return showInfo(*store); }; });
  keychain.add_subcommand("verify", "Check every entry of the store")->callback([store, &action] {
    action = [store] { return verify(*store); };
  });
}
