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

/// One kind of keys that stores may need, and what is said of them.
struct KeyKind {
  OSStatus (*find)(const SecFilePlace&, std::vector<SecFileKeptKey>&);
  OSStatus (*erase)(const SecFilePlace&, const std::string&);
  Message unreadable, missing, leftover, question;
};

KeyKind keyFiles() {
  return {SecFileStorage::keptKeys,
          SecFileStorage::eraseKeptKey,
          "the key files cannot be read"_text,
          "there is no key file {1} in {2}"_text,
          "{1} was made for {2}, where no store needs it."_text,
          "Remove the key file?"_text};
}

KeyKind desktopKeys() {
  return {SecFileStorage::keptDesktopKeys,
          SecFileStorage::eraseKeptDesktopKey,
          "the keys on the desktop cannot be read"_text,
          "there is no key {1} on the desktop"_text,
          "The desktop's key {1} was made for {2}, where no store needs it."_text,
          "Remove the key from the desktop?"_text};
}

void erase(const SecFilePlace& place, const KeyKind& kind, const std::string& key) {
  requireSuccess(kind.erase(place, key), "{1} was not removed"_text(key));
}

Message whatItIsFor(const KeyKind& kind, const SecFileKeptKey& key) {
  return sentences({kind.leftover(key.path, key.store),
                    "A copy of that store, or the store if it was moved, may still do."_text});
}

/// Asks about each key that no store names.
void askAboutLeftovers(const SecFilePlace& place, const KeyKind& kind, std::vector<SecFileKeptKey> keys) {
  std::erase_if(keys, [](const auto& key) { return key.use != SecFileKeptKey::Use::leftover; });
  if (!keys.empty() && !isOnTerminal()) throw Failure("without a terminal, name the keys to remove"_text);
  for (const SecFileKeptKey& key : keys)
    if (agrees(kind.question, whatItIsFor(kind, key))) erase(place, kind, key.path);
}

std::vector<SecFileKeptKey> keysOf(const SecFilePlace& place, const KeyKind& kind) {
  std::vector<SecFileKeptKey> keys;
  requireSuccess(kind.find(place, keys), kind.unreadable);
  return keys;
}

void pruneLeftovers(const SecFilePlace& place) {
  askAboutLeftovers(place, keyFiles(), keysOf(place, keyFiles()));
  const KeyKind kind = desktopKeys();
  std::vector<SecFileKeptKey> keys;
  // Without a desktop, or while it is locked, the key files are all there is to ask about.
  if (kind.find(place, keys) == errSecSuccess) askAboutLeftovers(place, kind, keys);
}

void pruneNamed(const SecFilePlace& place, const KeyKind& kind, const std::string& named) {
  const std::vector<SecFileKeptKey> keys = keysOf(place, kind);
  const auto key = std::find_if(keys.begin(), keys.end(), [&](const auto& k) { return k.path == named; });
  if (key == keys.end()) throw Failure(kind.missing(named, place.keyFolder));
  if (key->use == SecFileKeptKey::Use::used)
    throw Failure("{1} is needed by {2}"_text(named, key->store.empty() ? place.store : key->store));
  erase(place, kind, named);
}

int prune(const KeychainStore& store, const std::vector<std::string>& keys) {
  const SecFilePlace place = placeOf(store);
  if (keys.empty()) pruneLeftovers(place);
  for (const std::string& key : keys)
    if (key.ends_with(".key"))
      pruneNamed(place, keyFiles(), std::filesystem::weakly_canonical(key));
    else
      pruneNamed(place, desktopKeys(), key);
  return 0;
}

}  // namespace

void addKeychainSlots(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store) {
  CLI::App* slots = keychain.add_subcommand("slots", "Show what opens the store");
  slots->require_subcommand(0, 1);
  const auto list = [store, &action] { action = [store] { return listSlots(*store); }; };
  slots->add_subcommand("list", "Show what opens the store: any one of these is enough")->callback(list);
  CLI::App* pruning = slots->add_subcommand("prune", "Remove keys that no store needs, after asking");
  const auto keys = std::make_shared<std::vector<std::string>>();
  pruning->add_option("KEY", *keys, "Remove these key files and items, also if their store cannot be reached")
      ->check(isUTF8);
  pruning->callback([store, keys, &action] { action = [store, keys] { return prune(*store, *keys); }; });
  addKeychainSlotChanges(*slots, action, store);
  // Called after those of the subcommands.
  slots->callback([slots, list] {
    if (slots->get_subcommands().empty()) list();
  });
}
