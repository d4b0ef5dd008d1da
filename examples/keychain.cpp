// Stores a password, finds it, changes it and deletes it, once for a service and once for a server. The store
// is in memory, so that running this leaves nothing behind; without the first line of main it would be the
// user's.
#include <Security/SecDefaultStorage.h>
#include <Security/SecMemoryStorage.h>
#include <VXFoundation/VXFoundation.h>

#include <iostream>

namespace {

void report(const char* what, bool done) { std::cout << what << ": " << (done ? "done" : "failed") << '\n'; }

/// Returns the error with the recovery options that the user may choose from.
NSRef<NSError> withRecovery(const NSError& error, const NSRef<VXErrorRecoveryAttempter>& attempter) {
  const NSRef<NSMutableDictionary> userInfo = error.userInfo()->mutableCopy();
  userInfo->setObject(attempter, NSRecoveryAttempterErrorKey);
  userInfo->setObject(attempter->recoveryOptions(), NSLocalizedRecoveryOptionsErrorKey);
  return NSError::errorWithDomain(error.domain(), error.code(), userInfo);
}

NSRef<NSString> titleOf(NSStringArg option) {
  return NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier)
      ->localizedStringForKey(option, nullptr, "Recovery");
}

/// Does what a window would do: shows the description, what happened and what to do, and the options, and
/// takes the user's choice, here the first option.
class Presenter final : public NSErrorPresenter {
  std::optional<std::size_t> choose(const NSError& error, const NSArray& localizedOptions) override {
    std::cout << *error.localizedDescription() << '\n';
    if (const auto explanation = VXKeychainErrorExplanation(NSRefPtr(const_cast<NSError*>(&error))))
      std::cout << *explanation->whatHappened << '\n' << *explanation->whatToDo << '\n';
    std::cout << "  options: " << *localizedOptions.componentsJoinedByString(", ")
              << "\n  chosen: " << *localizedOptions.objectAtIndex(0)->description() << '\n';
    return 0;
  }
};

bool replacePassword(NSStringArg username, NSStringArg serviceName, NSStringArg password) {
  const auto item = VXGenericKeychainItem::findKeychainItemForUsername(username, serviceName);
  if (!item->refreshItemFromKeychainIncludePassword(false)) return false;
  item->setPassword(password);
  return item->updateAndFollow();
}

void genericPassword() {
  NSRefPtr<NSError> error;
  const auto item = VXGenericKeychainItem::keychainItemWithUsername("ann", "first secret", "Mail", "mail");
  report("add ann's password for mail", item->addItemToKeychain(&error));

  const auto twin = VXGenericKeychainItem::keychainItemWithUsername("ann", "second secret", "Mail", "mail");
  report("add it again", twin->addItemToKeychain(&error));
  const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  attempter->addRecoveryOptionWithLocalizedTitle(titleOf("Replace"), [](const NSRefPtr<NSError>&) {
    return replacePassword("ann", "mail", "second secret");
  });
  attempter->addCancelRecoveryOption();
  report("recover", Presenter().presentError(withRecovery(*error, attempter)));

  const auto found = VXGenericKeychainItem::findKeychainItemForUsername("ann", "mail");
  report("look it up", found->refreshItemFromKeychainIncludePassword(true, &error));
  std::cout << "  " << found->label() << ": " << found->password() << '\n';
  report("delete it", found->deleteItemFromKeychain(&error));
  report("look it up again", found->refreshItemFromKeychainIncludePassword(false, &error));
  std::cout << *error->localizedDescription() << '\n';
}

void internetPassword() {
  constexpr auto https = VXInternetKeychainItemProtocolHTTPS;
  const auto item = VXInternetKeychainItem::keychainItemWithUsername("ann", "a secret", nullptr,
                                                                     "example.org", "/admin", 8443, https);
  report("add ann's password for example.org", item->addItemToKeychain());
  const auto found =
      VXInternetKeychainItem::findKeychainItemForUsername("ann", "example.org", nullptr, 0, https);
  report("find it by account, server and protocol", found->refreshItemFromKeychainIncludePassword(true));
  std::cout << "  path " << found->path() << ", port " << found->port() << ": " << found->password() << '\n';
  found->setPassword("another secret");
  report("change it", found->updateItemInKeychain());
  report("refresh the first item", item->refreshItemFromKeychainIncludePassword(true));
  std::cout << "  " << item->password() << '\n';
  report("delete it", item->deleteItemFromKeychain());
}

}  // namespace

int main() {
  secSetDefaultStorage(std::make_shared<SecMemoryStorage>());
  NSLogSetSink([](std::string_view) {});  // failures are shown where they happen
  genericPassword();
  internetPassword();
}
