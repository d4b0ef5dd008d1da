#include <Security/SecItem.h>

#include <iostream>
#include <memory>

#include "tool/Failure.h"
#include "tool/KeychainEntry.h"
#include "tool/KeychainStore.h"
#include "tool/KeychainUpkeep.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"
#include "tool/Terminal.h"

namespace {

/// What the command line asks of a subcommand.
struct Request {
  KeychainEntry entry;
  std::optional<std::string> label;
  bool password = false;

  NSRefPtr<NSString> labelString() const {
    return label ? NSRefPtr<NSString>(stringOfArgument(*label)) : nullptr;
  }
};

/// Performs an operation on an item. Throws Failure with its error if it fails.
template <class Operation>
void require(Operation&& operation) {
  NSRefPtr<NSError> error;
  if (!operation(&error)) throw Failure(explain(*error));
}

NSRefPtr<NSString> readPassword() {
  const NSRef<NSData> entered = isOnTerminal() ? askSecret("Password") : readSecretInput();
  const NSRefPtr<NSString> password = NSString::stringWithData(entered, NSUTF8StringEncoding);
  if (!password) throw Failure("the password is not UTF-8");
  return password;
}

void update(const Request& request, const NSRefPtr<NSString>& password) {
  const NSRef<VXPasswordKeychainItem> item = request.entry.findItem();
  require([&](auto* error) { return item->refreshItemFromKeychainIncludePassword(false, error); });
  item->setPassword(password);
  if (request.label) item->setLabel(request.labelString());
  require([&](auto* error) { return item->updateItemInKeychain(error); });
}

NSRef<NSString> titleOfReplacing() {
  return NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier)
      ->localizedStringForKey("Replace", "", "Recovery");
}

/// Lets the person at the terminal choose a recovery option; returns whether it recovered from the error.
bool recover(const NSError& error, const Request& request, const NSRefPtr<NSString>& password) {
  const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  attempter->addRecoveryOptionWithLocalizedTitle(
      titleOfReplacing(), [&](const NSRefPtr<NSError>&) { return update(request, password), true; });
  attempter->addCancelRecoveryOption();
  const NSRef<NSMutableDictionary> userInfo = error.userInfo()->mutableCopy();
  userInfo->setObject(attempter, NSRecoveryAttempterErrorKey);
  userInfo->setObject(attempter->recoveryOptions(), NSLocalizedRecoveryOptionsErrorKey);
  return TerminalPresenter().presentError(NSError::errorWithDomain(error.domain(), error.code(), userInfo));
}

bool isDuplicate(const NSError& error) {
  const auto underlying = NSDynamicCast<NSError>(error.userInfo()->objectForKey(NSUnderlyingErrorKey));
  return underlying && underlying->code() == errSecDuplicateItem;
}

int add(const Request& request) {
  const NSRefPtr<NSString> password = readPassword();
  NSRefPtr<NSError> error;
  if (request.entry.makeItem(password, request.labelString())->addItemToKeychain(&error)) return 0;
  const bool recovered = isOnTerminal() && isDuplicate(*error) && recover(*error, request, password);
  if (!recovered) throw Failure(explain(*error));
  return 0;
}

void line(std::string& all, const char* name, const NSRefPtr<NSString>& value) {
  if (value) all += std::string(name) + ": " + std::string(*value) + '\n';
}

std::string fieldsOf(const VXPasswordKeychainItem& item) {
  std::string all;
  line(all, "account", item.username());
  if (const auto* generic = NSDynamicCast<VXGenericKeychainItem>(&item))
    line(all, "service", generic->serviceName());
  const auto* internet = NSDynamicCast<VXInternetKeychainItem>(&item);
  if (internet) line(all, "server", internet->server());
  line(all, "label", item.label());
  if (!internet) return all;
  line(all, "path", internet->path());
  if (internet->port() != 0) all += "port: " + std::to_string(internet->port()) + '\n';
  if (internet->protocol()) all += "protocol: " + nameOfProtocol(internet->protocol()) + '\n';
  return all;
}

int show(const Request& request) {
  const NSRef<VXPasswordKeychainItem> item = request.entry.findItem();
  require([&](auto* error) { return item->refreshItemFromKeychainIncludePassword(request.password, error); });
  if (request.password) {
    writeStandardOutput(item->data()->bytes());
    writeStandardOutput("\n");
  } else {
    writeStandardOutput(fieldsOf(*item));
  }
  return 0;
}

int change(const Request& request) {
  update(request, readPassword());
  return 0;
}

/// Deletes by the request alone, so that an entry whose secret is not a password can be deleted, too.
int remove(const Request& request) {
  const OSStatus status = SecItemDelete(request.entry.findItem()->keychainItemRequest());
  if (status == errSecItemNotFound) {
    std::cerr << "vxfoundation: there was no such entry" << std::endl;
    return 0;
  }
  requireSuccess(status, "the entry was not deleted");
  return 0;
}

}  // namespace

void addKeychain(CLI::App& app, Action& action) {
  CLI::App* keychain = app.add_subcommand("keychain", "Store, show, change and delete passwords");
  keychain->require_subcommand(1);
  const auto store = std::make_shared<KeychainStore>();
  store->addOptions(*keychain);
  const auto subcommand = [&](const char* name, const char* purpose, int (*run)(const Request&)) {
    CLI::App* command = keychain->add_subcommand(name, purpose);
    const auto request = std::make_shared<Request>();
    request->entry.addOptions(*command);
    command->callback([store, request, run, &action] {
      action = [store, request, run] { return store->open(), run(*request); };
    });
    return std::pair(command, request);
  };
  for (const auto& [command, request] :
       {subcommand("add", "Store a password, read from standard input or typed at a prompt", add),
        subcommand("update", "Change the password to one read from standard input or typed at a prompt",
                   change)})
    command->add_option("--label", request->label, "The label of the entry")->check(isUTF8);
  const auto [command, request] = subcommand("show", "Show an entry, without its password", show);
  command->add_flag("--password", request->password, "Show only the password");
  subcommand("delete", "Delete all entries that match the options", remove);
  for (const auto add : {addKeychainInfo, addKeychainProtection, addKeychainSlots, addKeychainRepair})
    add(*keychain, action, store);
}
