#include <memory>

#include "tool/KeychainCopy.h"
#include "tool/KeychainRequest.h"
#include "tool/KeychainStore.h"
#include "tool/KeychainUpkeep.h"
#include "tool/Subcommands.h"

namespace {

using Required = KeychainEntry::Required;
using Missing = SecFileStorage::Missing;

/// Makes the subcommands that act on entries.
struct Maker {
  CLI::App& keychain;
  Action& action;
  std::shared_ptr<KeychainStore> store;
  CLI::App* command = nullptr;  // the one that was made last, and its request
  std::shared_ptr<KeychainRequest> request = nullptr;

  void make(const char* name, const char* purpose, std::optional<Required> required,
            int (*run)(const KeychainRequest&), Missing missing = Missing::refuse) {
    command = keychain.add_subcommand(name, purpose);
    request = std::make_shared<KeychainRequest>();
    if (required) request->entry.addOptions(*command, *required);
    command->callback([run, missing, store = store, request = request, &action = action] {
      action = [run, missing, store, request] {
        return request->storage = store->open(missing), run(*request);
      };
    });
  }

  CLI::Option* text(const char* option, std::optional<std::string>& value, const char* purpose) {
    return command->add_option(option, value, purpose)->check(isUTF8);
  }
};

void addReading(Maker& maker) {
  maker.make("list", "List the entries that match the options, without their passwords", Required::nothing,
             listEntries);
  maker.command->add_flag("--json", maker.request->json, "Write an array of objects in JSON");
  maker.make("export", "Write the entries that match the options, and their passwords, as JSON",
             Required::nothing, exportEntries);
  maker.command->add_option("FILE", maker.request->file,
                            "A new file that only you can read; by default the terminal, after a question");
  maker.make("show", "Show an entry, without its password", Required::kind, showEntry);
  maker.command->add_flag("--password", maker.request->password, "Show only the password");
  maker.command->add_flag("--json", maker.request->json,
                          "Write an object in JSON; with --password, it has the password, too");
}

void addChanging(Maker& maker) {
  maker.make("add", "Store a password, read from standard input or typed at a prompt",
             Required::kindAndAccount, addEntry, Missing::make);
  maker.text("--label", maker.request->label, "The label of the entry");
  maker.make("update", "Change the password to one read from standard input or typed at a prompt",
             Required::kind, updateEntry);
  KeychainRequest& update = *maker.request;
  CLI::Option* label = maker.text("--label", update.label, "The new label, in addition to the password");
  maker.text("--new-account", update.newAccount, "Change the account; the password stays");
  maker.text("--new-service", update.newService, "Change the service; the password stays")
      ->needs(maker.command->get_option("--service"));
  maker.text("--new-server", update.newServer, "Change the server; the password stays")
      ->needs(maker.command->get_option("--server"));
  maker.text("--new-label", update.newLabel, "Change the label; the password stays")->excludes(label);
  maker.command->add_flag("--password", update.password, "Change the password, too");
  maker.make("import", "Store the entries of an export, or of what a browser exports as CSV", std::nullopt,
             importEntries, Missing::make);
  maker.command->add_option("FILE", maker.request->file, "The file to read instead of standard input");
  maker.request->existing.addOptions(*maker.command);
  maker.make("delete", "Delete the entry that the options name", Required::kind, deleteEntries);
  maker.command->add_flag("--all", maker.request->all, "Delete all entries that match the options");
}

}  // namespace

void addKeychain(CLI::App& app, Action& action) {
  CLI::App* keychain = app.add_subcommand("keychain", "Store, show, change and delete passwords");
  keychain->require_subcommand(1);
  const auto store = std::make_shared<KeychainStore>();
  store->addOptions(*keychain);
  Maker maker{*keychain, action, store};
  addChanging(maker);
  addReading(maker);
  for (const auto add :
       {addKeychainCopy, addKeychainInfo, addKeychainProtection, addKeychainSlots, addKeychainRepair})
    add(*keychain, action, store);
}
