#include <algorithm>
#include <cctype>
#include <map>

#include "tool/Failure.h"
#include "tool/KeychainEntry.h"
#include "tool/KeychainFile.h"
#include "tool/KeychainUpkeep.h"
#include "tool/Terminal.h"

namespace {

/// Returns the letters of a recovery passphrase, in whatever case and groups it was typed.
SecSecret lettersIn(std::span<const std::byte> typed) {
  SecSecret letters(typed.size());
  std::size_t count = 0;
  for (const std::byte byte : typed) {
    const int letter = std::to_integer<int>(byte);
    if (letter != ' ' && letter != '-')
      letters.writableBytes()[count++] = static_cast<std::byte>(std::tolower(letter));
  }
  return SecSecret(letters.bytes().first(count));
}

void showOnce(std::span<const std::byte> passphrase) {
  showAtTerminal("Recovery passphrase"_text.text() + ": ");
  showAtTerminal({reinterpret_cast<const char*>(passphrase.data()), passphrase.size()});
  showAtTerminal('\n' + "Write it down: it is not shown again."_text.text() + '\n');
}

void addRecovery(const KeychainStore& store, SecFileStorage& file) {
  if (store.noPrompt || !isOnTerminal())
    throw Failure("a recovery passphrase is only shown at a terminal"_text);
  SecSecret passphrase;
  requireSuccess(SecFileStorage::makeRecoveryPassphrase(passphrase),
                 "a recovery passphrase cannot be made"_text);
  showOnce(passphrase.bytes());
  const NSRef<NSData> typed = askSecret("Type the recovery passphrase"_text);
  if (!std::ranges::equal(lettersIn(typed->bytes()).bytes(), lettersIn(passphrase.bytes()).bytes()))
    throw Failure("that is not what was shown; nothing was added"_text);
  requireSuccess(file.addPassphrase(passphrase.bytes()), "the recovery passphrase was not added"_text);
}

void addPassphrase(const KeychainStore& store, SecFileStorage& file) {
  requireSuccess(file.addPassphrase(readNewPassphrase(store)->bytes()), "the passphrase was not added"_text);
}

void addKeyFile(const KeychainStore&, SecFileStorage& file) {
  requireSuccess(file.addKeyFile(), "the key file was not added"_text);
}

void addDesktop(const KeychainStore& store, SecFileStorage& file) {
  requireSuccess(file.addDesktop(store.desktopOptions()), "the key on the desktop was not added"_text);
}

const std::map<std::string, void (*)(const KeychainStore&, SecFileStorage&)> kinds = {
    {"key-file", addKeyFile},
    {"passphrase", addPassphrase},
    {"recovery", addRecovery},
    {"desktop", addDesktop}};

/// Returns the slot whose name begins with `start`.
SecFileSlotInfo slotNamed(const std::string& start, const SecFileInfo& info) {
  std::vector<SecFileSlotInfo> slots = info.keySlots;
  std::erase_if(slots, [&](const SecFileSlotInfo& slot) { return !slot.name.starts_with(start); });
  if (slots.empty() || start.empty()) throw Failure("there is no slot {1}"_text(start));
  if (slots.size() > 1) throw Failure("several slots begin with {1}"_text(start));
  return slots.front();
}

void requireConsent(const SecFileInfo& info, bool leavesOne) {
  if (info.keySlots.size() > 2 || leavesOne) return;
  if (!isOnTerminal()) throw Failure("only one slot would be left; confirm it with --leave-one"_text);
  if (!agrees("Remove the other?"_text,
              "Only one slot would be left: without it, nothing opens the store."_text))
    throw Failure("nothing was removed"_text);
}

int removeSlot(const KeychainStore& store, const std::string& start, bool leavesOne) {
  const auto file = openForUpkeep(store);
  const SecFileInfo info = infoOf(*file);
  const SecFileSlotInfo removed = slotNamed(start, info);
  const bool leavesOther = std::any_of(info.keySlots.begin(), info.keySlots.end(), [&](const auto& slot) {
    return slot.name != removed.name && slot.protection != SecFileProtection::desktop;
  });
  if (!leavesOther) throw Failure("a key file or a passphrase has to be left"_text);
  requireConsent(info, leavesOne);
  requireSuccess(file->removeSlot(removed.name), "the slot was not removed"_text);
  return 0;
}

}  // namespace

void addKeychainSlotChanges(CLI::App& slots, Action& action, const std::shared_ptr<KeychainStore>& store) {
  CLI::App* add = slots.add_subcommand("add", "Add something that opens the store; the others stay");
  const auto kind = std::make_shared<std::string>();
  add->add_option("KIND", *kind, "key-file, passphrase, recovery or desktop")
      ->required()
      ->check(CLI::IsMember(kinds));
  add->callback([store, kind, &action] {
    action = [store, kind] { return kinds.at(*kind)(*store, *openForUpkeep(*store)), 0; };
  });
  CLI::App* remove =
      slots.add_subcommand("remove", "Remove something that opens the store, and change its keys");
  const auto name = std::make_shared<std::string>();
  const auto leavesOne = std::make_shared<bool>();
  remove->add_option("SLOT", *name, "What `slots` calls it, or the start of that")->required()->check(isUTF8);
  remove->add_flag("--leave-one", *leavesOne, "Remove the last but one without asking");
  remove->callback([store, name, leavesOne, &action] {
    action = [store, name, leavesOne] { return removeSlot(*store, *name, *leavesOne); };
  });
}
