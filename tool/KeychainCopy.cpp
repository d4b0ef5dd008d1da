#include "tool/KeychainCopy.h"

#include "tool/EntrySearch.h"
#include "tool/EntryTransfer.h"
#include "tool/KeychainEntry.h"
#include "tool/StandardStreams.h"

namespace {

/// One of the two stores, as far as the options name it.
struct Side {
  std::optional<std::string> place;
  std::optional<int> passphraseDescriptor;

  void addOptions(CLI::App& command, const std::string& name, const char* purpose) {
    command.add_option(name, place, purpose)->check(isUTF8)->check(KeychainStore::isPlace);
    command
        .add_option(name + "-passphrase-fd", passphraseDescriptor,
                    "Read its passphrase, one line, from this descriptor")
        ->check(isDecimal);
  }

  std::shared_ptr<SecStorage> open(KeychainStore store, SecFileStorage::Missing missing) const {
    if (place) {
      store.place = *place;
      store.passphraseDescriptor.reset();
    }
    if (passphraseDescriptor) store.passphraseDescriptor = passphraseDescriptor;
    return store.open(missing);
  }
};

struct Copy {
  Side from, to;
  ExistingEntries existing;

  int run(const KeychainStore& store) const {
    const auto source = from.open(store, SecFileStorage::Missing::refuse);
    const auto target = to.open(store, SecFileStorage::Missing::make);
    const auto rows = matches(*source, KeychainEntry().queries(), SecSecrets::read);
    writeStandardOutput("copied, " + putEntries(*target, rows, existing) + '\n');
    return 0;
  }
};

}  // namespace

void addKeychainCopy(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store) {
  CLI::App* command = keychain.add_subcommand("copy", "Copy all entries from one store to another");
  const auto copy = std::make_shared<Copy>();
  copy->from.addOptions(*command, "--from", "The store to copy from");
  copy->to.addOptions(*command, "--to", "The store to copy to");
  copy->existing.addOptions(*command);
  command->callback([copy, store, &action] {
    if (!copy->from.place && !copy->to.place) throw CLI::RequiredError("--from or --to");
    action = [copy, store] { return copy->run(*store); };
  });
}
