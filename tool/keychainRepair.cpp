#include "tool/Failure.h"
#include "tool/KeychainEntry.h"
#include "tool/KeychainFile.h"
#include "tool/KeychainUpkeep.h"
#include "tool/StandardStreams.h"

namespace {

/// Makes sure that the store can be salvaged; returns the passphrase that it takes, or empty data.
NSRef<NSData> trySalvage(const KeychainStore& store, const SecFilePlace& place) {
  const auto attempt = [&](const NSData& passphrase) {
    return SecFileStorage::salvage(place, passphrase.bytes(), [](const SecEntry&) {});
  };
  NSRef<NSData> passphrase = NSData::data();
  OSStatus status = attempt(*passphrase);
  if (status == errSecInteractionNotAllowed || status == errSecDataNotAvailable ||
      status == errSecAuthFailed) {
    if (const auto entered = readPassphrase(store, "Passphrase of {1}"_text(place.store))) {
      passphrase = entered;
      status = attempt(*passphrase);
    }
  }
  requireSuccess(status, "nothing can be salvaged"_text);
  return passphrase;
}

int salvage(const KeychainStore& store, const std::string& to) {
  const SecFilePlace place = placeOf(store);
  const NSRef<NSData> passphrase = trySalvage(store, place);
  KeychainStore target = store;
  target.place = to;
  std::uint64_t entries = 0;
  requireSuccess(SecFileStorage::salvage(place, passphrase->bytes(),
                                         *target.openUnlocked(SecFileStorage::Missing::make), entries),
                 "the entries were not added to {1}"_text(to));
  writeStandardOutput("salvaged, entries: " + std::to_string(entries) + '\n');
  return 0;
}

int accept(const KeychainStore& store) {
  requireSuccess(openForUpkeep(store)->accept(), "the keychain was not accepted"_text);
  return 0;
}

}  // namespace

void addKeychainRepair(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store) {
  CLI::App* command =
      keychain.add_subcommand("salvage", "Add what is left of a damaged store to another store");
  const auto to = std::make_shared<std::string>();
  command->add_option("--to", *to, "The other store; it is created if it does not exist")
      ->required()
      ->check(KeychainStore::isPlace);
  command->callback([store, to, &action] { action = [store, to] { return salvage(*store, *to); }; });
  keychain.add_subcommand("accept", "Accept a store that went back to a former state, such as a backup")
      ->callback([store, &action] { action = [store] { return accept(*store); }; });
}
