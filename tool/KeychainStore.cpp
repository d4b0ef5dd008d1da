#include "tool/KeychainStore.h"

#include <Security/SecDefaultStorage.h>
#include <Security/SecDesktopStorage.h>
#include <Security/SecFileStorage.h>
#include <Security/SecMemoryStorage.h>

#include <algorithm>

#include "tool/Failure.h"
#include "tool/KeychainEntry.h"
#include "tool/StandardStreams.h"
#include "tool/Terminal.h"

namespace {

constexpr char inMemory[] = ":memory:";
constexpr char onDesktop[] = ":desktop:";

const CLI::Validator isStore(
    [](std::string& name) -> std::string {
      if (name.empty()) return "the name is empty";
      const bool isNoFile = name.size() > 1 && name.front() == ':' && name.back() == ':';
      if (!isNoFile || name == inMemory || name == onDesktop) return "";
      return "there is no store " + name + "; a file of that name is ./" + name;
    },
    "", "store");

/// Reads from the descriptor if one was named, otherwise asks at the terminal; returns nil if there is
/// neither.
NSRefPtr<NSData> passphrase(const KeychainStore& store, const std::string& question) {
  if (store.passphraseDescriptor) {
    const NSRefPtr<NSData> line = readSecretLine(*store.passphraseDescriptor);
    if (!line) throw Failure("there is no passphrase to read");
    return line;
  }
  return isOnTerminal() ? NSRefPtr<NSData>(askSecret(question)) : nullptr;
}

std::unique_ptr<SecFileStorage> openFile(const KeychainStore& store) {
  SecFilePlace place;
  requireSuccess(store.place.empty() ? secDefaultFilePlace(place) : secFilePlaceAt(store.place, place),
                 "the keychain cannot be located");
  std::unique_ptr<SecFileStorage> file;
  requireSuccess(SecFileStorage::open(place, SecFileStorage::Missing::make, file),
                 "the keychain cannot be opened");
  return file;
}

SecFileInfo infoOf(SecFileStorage& file) {
  SecFileInfo info;
  requireSuccess(file.info(info), "the keychain cannot be read");
  return info;
}

bool hasPassphrase(const SecFileInfo& info) {
  return std::any_of(info.keySlots.begin(), info.keySlots.end(), [](const SecFileSlotInfo& slot) {
    return slot.protection == SecFileProtection::passphrase;
  });
}

void unlock(SecFileStorage& file, const KeychainStore& store) {
  const SecFileInfo info = infoOf(file);
  if (!info.locked || !hasPassphrase(info)) return;
  const NSRefPtr<NSData> entered = passphrase(store, "Passphrase of " + info.path);
  if (entered) requireSuccess(file.unlock(entered->bytes()), "the keychain cannot be unlocked");
}

std::unique_ptr<SecDesktopStorage> openDesktop(const KeychainStore& store) {
  SecDesktopOptions options;
  options.allowsPrompts = !store.noPrompt && hasTerminal();
  std::unique_ptr<SecDesktopStorage> desktop;
  requireSuccess(SecDesktopStorage::open(options, desktop), "the keychain cannot be opened");
  return desktop;
}

std::shared_ptr<SecStorage> openAny(const KeychainStore& store) {
  if (store.place == inMemory) return std::make_shared<SecMemoryStorage>();
  if (store.place == onDesktop) return openDesktop(store);
  return openFile(store);
}

/// Opens the store for operations that only files have.
std::unique_ptr<SecFileStorage> openForUpkeep(const KeychainStore& store) {
  if (store.place == inMemory) throw Failure("a keychain in memory has no file");
  if (store.place == onDesktop) throw Failure("the desktop's keychain has no file of its own");
  return openFile(store);
}

int showInfo(const KeychainStore& store) {
  const std::shared_ptr<SecStorage> storage = openAny(store);
  SecStorageInfo info;
  requireSuccess(storage->copyInfo(info), "the keychain cannot be read");
  writeStandardOutput("store: " + info.place + "\nprotection: " + info.protection +
                      "\nentries: " + std::to_string(info.entries) + '\n');
  return 0;
}

int verify(const KeychainStore& store) {
  const auto file = openForUpkeep(store);
  unlock(*file, store);
  requireSuccess(file->verify(), "the keychain failed verification");
  writeStandardOutput("intact, entries: " + std::to_string(infoOf(*file).entries) + '\n');
  return 0;
}

NSRefPtr<NSData> newPassphrase(const KeychainStore& store) {
  const NSRefPtr<NSData> entered = passphrase(store, "New passphrase");
  if (!entered) throw Failure("a passphrase must come from a terminal or from --passphrase-fd");
  if (entered->length() == 0) throw Failure("the new passphrase is empty");
  if (store.passphraseDescriptor) return entered;
  if (!entered->isEqual(askSecret("Repeat the new passphrase"))) throw Failure("the two passphrases differ");
  return entered;
}

int changePassphrase(const KeychainStore& store, bool removing) {
  const auto file = openForUpkeep(store);
  unlock(*file, store);
  if (removing)
    requireSuccess(file->removePassphrase(), "the passphrase was not removed");
  else
    requireSuccess(file->setPassphrase(newPassphrase(store)->bytes()), "the passphrase was not changed");
  return 0;
}

}  // namespace

void KeychainStore::addOptions(CLI::App& keychain) {
  keychain
      .add_option("--keychain", place,
                  "The store file, :memory: or :desktop:; by default the user's store file")
      ->check(isUTF8)
      ->check(isStore);
  keychain.add_flag("--no-prompt", noPrompt, "Do not let the desktop's credential service ask anything");
  keychain
      .add_option("--passphrase-fd", passphraseDescriptor,
                  "Read a passphrase, one line, from this descriptor")
      ->check(isDecimal);
}

void KeychainStore::open() const {
  if (place == inMemory || place == onDesktop) return secSetDefaultStorage(openAny(*this));
  std::unique_ptr<SecFileStorage> file = openFile(*this);
  unlock(*file, *this);
  secSetDefaultStorage(std::move(file));
}

void addKeychainStore(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store) {
  keychain
      .add_subcommand("info", "Show which store is used, how it is protected and how many entries it holds")
      ->callback([store, &action] { action = [store] { return showInfo(*store); }; });
  keychain.add_subcommand("verify", "Check every entry of the store")->callback([store, &action] {
    action = [store] { return verify(*store); };
  });
  CLI::App* command = keychain.add_subcommand("passphrase", "Set, change or remove the store's passphrase");
  const auto removing = std::make_shared<bool>();
  command->add_flag("--remove", *removing, "Protect the store with a key file again");
  command->callback([store, removing, &action] {
    action = [store, removing] { return changePassphrase(*store, *removing); };
  });
}
