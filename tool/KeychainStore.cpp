#include "tool/KeychainStore.h"

#include <Security/SecDefaultStorage.h>
#include <Security/SecMemoryStorage.h>

#include "tool/Failure.h"
#include "tool/KeychainEntry.h"
#include "tool/KeychainFile.h"
#include "tool/Terminal.h"

namespace {

constexpr char inMemory[] = ":memory:";
constexpr char onDesktop[] = ":desktop:";

std::unique_ptr<SecDesktopStorage> openDesktop(const KeychainStore& store) {
  std::unique_ptr<SecDesktopStorage> desktop;
  requireSuccess(SecDesktopStorage::open(store.desktopOptions(), desktop),
                 "the keychain cannot be opened"_text);
  return desktop;
}

}  // namespace

const CLI::Validator KeychainStore::isPlace(
    [](std::string& name) -> std::string {
      if (name.empty()) return "the name is empty";
      const bool isNoFile = name.size() > 1 && name.front() == ':' && name.back() == ':';
      if (!isNoFile || name == inMemory || name == onDesktop) return "";
      return "there is no store " + name + "; a file of that name is ./" + name;
    },
    "", "store");

void KeychainStore::addOptions(CLI::App& keychain) {
  keychain
      .add_option("--keychain", place,
                  "The store file, :memory: or :desktop:; by default the user's store file")
      ->envname("VXFOUNDATION_KEYCHAIN")
      ->check(isUTF8)
      ->check(isPlace);
  keychain.add_flag("--allow-shared-folder", allowSharedFolder,
                    "Use a store file in a folder that other users may write to");
  keychain.add_flag("--no-prompt", noPrompt,
                    "Ask for no passphrase, and do not let the desktop's credential service ask anything");
  keychain
      .add_option("--passphrase-fd", passphraseDescriptor,
                  "Read a passphrase, one line, from this descriptor")
      ->check(isDecimal);
}

bool KeychainStore::isInMemory() const { return place == inMemory; }
bool KeychainStore::isOnDesktop() const { return place == onDesktop; }

SecDesktopOptions KeychainStore::desktopOptions() const {
  SecDesktopOptions options;
  options.allowsPrompts = !noPrompt && hasTerminal();
  return options;
}

std::shared_ptr<SecStorage> KeychainStore::openAsItIs() const {
  if (isInMemory()) return std::make_shared<SecMemoryStorage>();
  if (isOnDesktop()) return openDesktop(*this);
  return findStoreFile(*this);
}

std::shared_ptr<SecStorage> KeychainStore::openUnlocked(Missing missing) const {
  if (isInMemory() || isOnDesktop()) return openAsItIs();
  std::unique_ptr<SecFileStorage> file =
      missing == Missing::make ? openStoreFile(*this, missing) : findStoreFile(*this);
  if (!file) return std::make_shared<SecMemoryStorage>();
  unlock(*file, *this);
  return file;
}

std::shared_ptr<SecStorage> KeychainStore::open(Missing missing) const {
  const std::shared_ptr<SecStorage> storage = openUnlocked(missing);
  secSetDefaultStorage(storage);
  return storage;
}
