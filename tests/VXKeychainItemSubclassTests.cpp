#include <VXFoundation/VXKeychainItem.h>

#include "tests/support/KeychainSupport.h"
#include "tests/support/RecordedAssertions.h"
#include "tests/support/Threads.h"

namespace {

/// A host's class of items that records every step and adds to it.
class MailItem : public VXGenericKeychainItem::Subclass<MailItem> {
 public:
  using VXGenericKeychainItem::initWithUsername;
  bool initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label) override {
    return username && VXGenericKeychainItem::initWithUsername(username, password, label);
  }
  bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const override {
    validated.push_back(shown(dictionary));
    return !refusing && VXGenericKeychainItem::dictHasVaildKeychainData(dictionary);
  }
  NSRef<NSMutableDictionary> _createAttributesDictionary() const override {
    const auto attributes = VXGenericKeychainItem::_createAttributesDictionary();
    attributes->setObject("Mail account", kSecAttrLabel);
    return *(created = attributes);
  }
  void populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response) override {
    populated = response;
    VXGenericKeychainItem::populateKeychainItemWithKeychainResponse(response);
  }
  static NSRef<NSMutableDictionary> queryDictionaryWithUsername(NSStringArg username, NSStringArg) {
    return VXGenericKeychainItem::queryDictionaryWithUsername(username, "mail.example");
  }

  bool refusing = false;
  mutable std::vector<std::string> validated;
  mutable NSRefPtr<NSMutableDictionary> created;
  NSRefPtr<NSDictionary> populated;
};

class SharedMailItem : public MailItem::Subclass<SharedMailItem> {};

class SiteItem : public VXInternetKeychainItem::Subclass<SiteItem> {
 public:
  using VXInternetKeychainItem::initWithUsername;
  bool initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label) override {
    return initWithUsername(username, password, label, "host", nullptr, 0,
                            VXInternetKeychainItemProtocolNone);
  }
  static NSRef<NSMutableDictionary> queryDictionaryWithUsername(NSStringArg username, NSStringArg server,
                                                                NSStringArg, std::int64_t port,
                                                                VXInternetKeychainItemProtocol protocol) {
    return VXInternetKeychainItem::queryDictionaryWithUsername(username, server, "/site", port, protocol);
  }
};

class SecureSiteItem : public SiteItem::Subclass<SecureSiteItem> {};

template <class Made>
std::string nameOf(const Made& made) {
  return std::string(made->isa().name());
}

}  // namespace

using VXKeychainItemSubclassTest = KeychainTest;

TEST_F(VXKeychainItemSubclassTest, FactoriesAndFindersMakeTheRightClass) {
  EXPECT_EQ(nameOf(MailItem::keychainItemWithUsername("ann", "s", nullptr, "m")), "MailItem");
  EXPECT_EQ(nameOf(SharedMailItem::keychainItemWithUsername("ann", "s", nullptr, "m")), "SharedMailItem");
  EXPECT_FALSE(MailItem::keychainItemWithUsername(nullptr, "s", nullptr, "m")) << "the initialiser refused";
  EXPECT_FALSE(SharedMailItem::keychainItemWithUsername(nullptr, "s", nullptr, "m"));

  const std::string query = "class=generic password account=ann service=mail.example";
  for (const auto& found : {MailItem::findKeychainItemForUsername("ann", "m"),
                            SharedMailItem::findKeychainItemForUsername("ann", "m")}) {
    EXPECT_EQ(nameOf(found), "VXGenericKeychainItem");
    EXPECT_EQ(shown(found->keychainItemRequest()), query);
  }

  constexpr auto http = VXInternetKeychainItemProtocolHTTP;
  EXPECT_EQ(nameOf(SiteItem::keychainItemWithUsername("a", "s", "l", "h", "/", 1, http)), "SiteItem");
  EXPECT_EQ(nameOf(SecureSiteItem::keychainItemWithUsername("a", "s", "l", "h", "/", 1, http)),
            "SecureSiteItem");
  const auto brief = SiteItem::alloc();
  ASSERT_TRUE(brief->initWithUsername("ann", "secret", nullptr)) << "the long initialiser calls no short one";
  EXPECT_EQ(shown(brief->server()) + shown(brief->password()), "hostsecret");
  const auto site = SiteItem::findKeychainItemForUsername("ann", "host", "/", 1, http);
  const auto secure = SecureSiteItem::findKeychainItemForUsername("ann", "host", "/", 1, http);
  EXPECT_EQ(nameOf(site) + " " + nameOf(secure), "SiteItem SecureSiteItem");
  EXPECT_EQ(shown(secure->keychainItemRequest()), shown(site->keychainItemRequest()));
  EXPECT_EQ(shown(site->keychainItemRequest()),
            "class=internet password account=ann server=host port=1 path=/site protocol=http");
}

TEST_F(VXKeychainItemSubclassTest, EveryStepCallsTheOverridableOperations) {
  const auto item = MailItem::keychainItemWithUsername("ann", "secret", "Mail", "mail.example");
  const std::string attributes =
      "account=ann valueData=secret label=Mail account class=generic password service=mail.example";
  ASSERT_TRUE(item->addItemToKeychain());
  EXPECT_EQ(item->validated, std::vector{attributes}) << "validated before the return flag was added";
  EXPECT_EQ(item->keychainItemRequest().get(), item->created.get());
  EXPECT_EQ(item->keychainItemResponse().get(), item->populated.get());
  EXPECT_EQ(shown(item->label()), "Mail account");

  item->populated = nullptr;
  ASSERT_TRUE(item->refreshItemFromKeychainIncludePassword(false));
  EXPECT_EQ(item->validated.size(), 1u) << "nothing is validated without data";
  EXPECT_TRUE(item->populated && item->populated.get() == item->keychainItemResponse().get());
  ASSERT_TRUE(item->refreshItemFromKeychainIncludePassword(true));
  EXPECT_EQ(item->validated.size(), 2u);
  EXPECT_EQ(shown(item->keychainItemResponse()->objectForKey(kSecValueData)), "secret");

  const NSRefPtr<NSMutableDictionary> asked = item->created;
  ASSERT_TRUE(item->updateItemInKeychain());
  EXPECT_EQ(item->keychainItemRequest().get(), asked.get());
  EXPECT_EQ(shown(item->created), attributes) << "no flag in the changes";

  item->refusing = true;
  NSRefPtr<NSError> error;
  EXPECT_FALSE(item->refreshItemFromKeychainIncludePassword(true, &error));
  EXPECT_FALSE(item->deleteItemFromKeychain());
  EXPECT_EQ(error->code(), 0);
  item->refusing = false;
  EXPECT_TRUE(item->deleteItemFromKeychain());
}

TEST_F(VXKeychainItemSubclassTest, EveryAssertionReportsToTheHandlerAndContinuesIfThatReturns) {
  const auto empty = MailItem::alloc();
  const auto added = MailItem::keychainItemWithUsername("ann", "secret", nullptr, "m");
  ASSERT_TRUE(added->addItemToKeychain());
  added->setKeychainItemResponse(nullptr);
  const std::function<void()> misuses[] = {
      [&] { EXPECT_FALSE(empty->refreshItemFromKeychainIncludeData(true)); },
      [&] { EXPECT_FALSE(empty->updateItemInKeychain()); },
      [&] { EXPECT_TRUE(added->updateItemInKeychain()); },
      [] { EXPECT_TRUE(MailItem::findKeychainItemForUsername(nullptr, nullptr)->keychainItemRequest()); },
      [] {
        SiteItem::findKeychainItemForUsername(nullptr, nullptr, nullptr, 0,
                                              VXInternetKeychainItemProtocolNone);
      },
  };
  std::vector<std::vector<std::string>> failures;
  for (const auto& misuse : misuses) {
    EXPECT_EQ(raised(misuse), "NSInternalInconsistencyException");
    RecordedAssertions assertions;
    misuse();
    for (const std::string& failure : assertions.take()) failures.push_back({failure});
  }
  EXPECT_EQ(failures, vectors("keychain-assertions.tsv"));
}

TEST_F(VXKeychainItemSubclassTest, ThreadsWithSeparateItemsShareOneStore) {
  onThreads(8, [](std::size_t thread) {
    RecordedAssertions assertions;
    const auto name = text("user" + std::to_string(thread));
    for (int round = 0; round < 50; ++round) {
      const auto own = VXGenericKeychainItem::keychainItemWithUsername(name, name, nullptr, "own");
      const auto shared = VXGenericKeychainItem::keychainItemWithUsername("all", name, nullptr, "shared");
      NSRefPtr<NSError> error;
      EXPECT_TRUE(own->addItemToKeychain(&error));
      EXPECT_TRUE(shared->addItemToKeychain(&error) || error->code() == -200)
          << "neither added nor a duplicate";
      own->setPassword("changed");
      EXPECT_TRUE(own->updateItemInKeychain());
      const auto found = VXGenericKeychainItem::findKeychainItemForUsername(name, "own");
      EXPECT_TRUE(found->refreshItemFromKeychainIncludePassword(true));
      EXPECT_EQ(shown(found->password()), "changed");
      EXPECT_TRUE(own->deleteItemFromKeychain());
      EXPECT_TRUE(shared->deleteItemFromKeychain());
      EXPECT_FALSE(VXGenericKeychainItem::alloc()->refreshItemFromKeychainIncludeData(false));
    }
    EXPECT_EQ(assertions.take().size(), 50u);
  });
  EXPECT_EQ(SecItemCopyMatching(writtenMap("class=generic")), errSecItemNotFound);
}
