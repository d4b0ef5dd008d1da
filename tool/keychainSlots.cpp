#include <algorithm>
#include <filesystem>

#include "tool/Failure.h"
#include "tool/KeychainEntry.h"
#include "tool/KeychainFile.h"
#include "tool/KeychainUpkeep.h"
#include "tool/StandardStreams.h"
#include "tool/Terminal.h"

namespace {

std::string describe(const SecFileSlotInfo& slot) {
  switch (slot.protection) {
    case SecFileProtection::keyFile:
      return "key file " + slot.keyFile;
    case SecFileProtection::passphrase:
      return "passphrase";
    case SecFileProtection::desktop:
      return "desktop";
  }
  return "unknown to this version";
}

int listSlots(const KeychainStore& store) {
  const auto file = openStoreFile(store, SecFileStorage::Missing::refuse);
  for (const SecFileSlotInfo& slot : infoOf(*file).keySlots)
    writeStandardOutput((slot.name.empty() ? "-" : slot.name.substr(0, 8)) + ": " + describe(slot) + '\n');
  return 0;
}

std::vector<SecFileKeptKey> keptKeys(const SecFilePlace& place) {
  std::vector<SecFileKeptKey> keys;
  requireSuccess(SecFileStorage::keptKeys(place, keys), "the key files cannot be read"_text);
  return keys;
}

void erase(const SecFilePlace& place, const std::string& path) {
  requireSuccess(SecFileStorage::eraseKeptKey(place, path), "{1} was not removed"_text(path));
}

Message whatItIsFor(const SecFileKeptKey& key) {
  return sentences({"{1} was made for {2}, where no store needs it."_text(key.path, key.store),
                    "A copy of that store, or the store if it was moved, may still do."_text});
}

/// Asks about each key file that no store names.
void pruneLeftovers(const SecFilePlace& place) {
  std::vector<SecFileKeptKey> keys = keptKeys(place);
  std::erase_if(keys, [](const auto& key) { return key.use != SecFileKeptKey::Use::leftover; });
  if (!keys.empty() && !isOnTerminal())
    throw Failure("without a terminal, name the key files to remove"_text);
  for (const SecFileKeptKey& key : keys)
    if (agrees("Remove the key file?"_text, whatItIsFor(key))) erase(place, key.path);
}

void pruneNamed(const SecFilePlace& place, const std::vector<std::string>& paths) {
  const std::vector<SecFileKeptKey> keys = keptKeys(place);
  for (const std::string& named : paths) {
    const std::string path = std::filesystem::weakly_canonical(named);
    const auto key = std::find_if(keys.begin(), keys.end(), [&](const auto& k) { return k.path == path; });
    if (key == keys.end()) throw Failure("there is no key file {1} in {2}"_text(path, place.keyFolder));
    if (key->use == SecFileKeptKey::Use::used)
      throw Failure("{1} is needed by {2}"_text(path, key->store.empty() ? place.store : key->store));
    erase(place, path);
  }
}

}  // namespace

void addKeychainSlots(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store) {
  CLI::App* slots = keychain.add_subcommand("slots", "Show what opens the store");
  slots->require_subcommand(0, 1);
  const auto list = [store, &action] { action = [store] { return listSlots(*store); }; };
  slots->add_subcommand("list", "Show what opens the store: any one of these is enough")->callback(list);
  CLI::App* prune = slots->add_subcommand("prune", "Remove key files that no store needs, after asking");
  const auto paths = std::make_shared<std::vector<std::string>>();
  prune->add_option("FILE", *paths, "Remove these key files, also if their store cannot be reached")
      ->check(isUTF8);
  prune->callback([store, paths, &action] {
    action = [store, paths] {
      const SecFilePlace place = placeOf(*store);
      paths->empty() ? pruneLeftovers(place) : pruneNamed(place, *paths);
      return 0;
    };
  });
  // Called after those of the subcommands.
  slots->callback([slots, list] {
    if (slots->get_subcommands().empty()) list();
  });
}
