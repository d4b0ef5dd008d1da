#include <limits>
#include <tuple>

#include "KeychainSupport.h"

namespace {

using Operation = bool (*)(VXKeychainItem&, RefPtr<NSError>*);

bool add(VXKeychainItem& item, RefPtr<NSError>* error) { return item.addItemToKeychain(error); }
bool refresh(VXKeychainItem& item, RefPtr<NSError>* error) {
  return item.refreshItemFromKeychainIncludeData(false, error);
}
bool refreshWithData(VXKeychainItem& item, RefPtr<NSError>* error) {
  return item.refreshItemFromKeychainIncludeData(true, error);
}
bool update(VXKeychainItem& item, RefPtr<NSError>* error) { return item.updateItemInKeychain(error); }
bool erase(VXKeychainItem& item, RefPtr<NSError>* error) { return item.deleteItemFromKeychain(error); }

const Operation allOperations[] = {add, refresh, refreshWithData, update, erase};
const Operation validatingOperations[] = {add, update, erase};

Ref<VXGenericKeychainItem> genericItem(Text username = "ann", Text password = "secret", Text label = "Mail",
                                       Text service = "mail") {
  return VXGenericKeychainItem::keychainItemWithUsername(username, password, label, service);
}

Ref<VXInternetKeychainItem> internetItem(std::int64_t port = 80, std::uint64_t protocol = 1,
                                         Text server = "host", Text path = "/a") {
  return VXInternetKeychainItem::keychainItemWithUsername("ann", "secret", nullptr, server, path, port,
                                                          VXInternetKeychainItemProtocol(protocol));
}

/// An item that has both maps, without a store having been asked.
template <class Item>
Item bound(Item item) {
  item->setKeychainItemRequest(item->_createAttributesDictionary());
  item->setKeychainItemResponse(NSDictionary::dictionary());
  return item;
}

using State = std::tuple<std::string, std::string, std::string, NSDictionary*, NSDictionary*>;
State stateOf(const VXKeychainItem& item) {
  return {shown(item.label()), shown(item.username()), shown(item.data()), item.keychainItemRequest().get(),
          item.keychainItemResponse().get()};
}

}  // namespace

using VXKeychainItemTest = KeychainTest;

TEST_F(VXKeychainItemTest, EveryFailingStatusBecomesAnErrorAndOneLogLineWhenAsked) {
  const struct {
    OSStatus status;
    std::int64_t code;
    const char* description;
  } rows[] = {
      {errSecItemNotFound, -201,
       "A keychain item matching the attributes could not be found in the keychain"},
      {errSecDuplicateItem, -200, "The keychain item could not be added because it is a duplicate"},
      {errSecParam, -200, "There was an unknown error while accessing your keychain"},
      {errSecInteractionNotAllowed, -200, "There was an unknown error while accessing your keychain"},
      {1, -200, "There was an unknown error while accessing your keychain"},
      {std::numeric_limits<OSStatus>::min(), -200,
       "There was an unknown error while accessing your keychain"},
  };
  for (const auto& row : rows) {
    answerAlways(row.status);
    for (const Operation operation : allOperations) {
      SCOPED_TRACE(row.status);
      const bool expected = operation == erase && row.status == errSecItemNotFound;
      const auto item = bound(genericItem());
      const State before = stateOf(*item);
      logged.clear();
      EXPECT_EQ(operation(*item, nullptr), expected);
      EXPECT_TRUE(logged.empty());
      RefPtr<NSError> error;
      EXPECT_EQ(operation(*item, &error), expected);
      EXPECT_EQ(stateOf(*item), before);
      EXPECT_EQ(logged, std::vector{"_VXKeychainItemCheckStatus Error: " + std::to_string(row.status)});
      ASSERT_TRUE(error);
      EXPECT_EQ(shown(error->domain()), shown(VXFoundationBundleIdentifier));
      EXPECT_EQ(error->code(), row.code);
      EXPECT_EQ(error->userInfo()->count(), 2u);
      EXPECT_EQ(shown(error->userInfo()->objectForKey(NSLocalizedDescriptionKey)), row.description);
      const auto underlying = dynamicCast<NSError>(error->userInfo()->objectForKey(NSUnderlyingErrorKey));
      ASSERT_TRUE(underlying);
      EXPECT_EQ(shown(underlying->domain()), shown(NSOSStatusErrorDomain));
      EXPECT_EQ(underlying->code(), row.status);
      EXPECT_EQ(shown(underlying->userInfo()),
                shown(NSLocalizedDescriptionKey) + "=" + shown(SecCopyErrorMessageString(row.status)));
    }
  }
}

TEST_F(VXKeychainItemTest, IncompleteAttributesAreRefusedBeforeAnyStoreIsAsked) {
  const auto notUTF8 = genericItem();
  notUTF8->setData(bytes("\xff\xfe"));
  const Ref<VXKeychainItem> items[] = {genericItem(nullptr),
                                       genericItem(""),
                                       genericItem("ann", nullptr),
                                       genericItem("ann", ""),
                                       genericItem("ann", "secret", "Mail", nullptr),
                                       genericItem("ann", "secret", "Mail", ""),
                                       notUTF8,
                                       internetItem(80, 1, nullptr),
                                       internetItem(80, 1, "")};
  const auto storage = answerAlways(errSecParam);
  for (const auto& item : items) {
    bound(item);
    const State before = stateOf(*item);
    for (const Operation operation : validatingOperations) {
      EXPECT_FALSE(operation(*item, nullptr));
      RefPtr<NSError> error;
      EXPECT_FALSE(operation(*item, &error));
      ASSERT_TRUE(error);
      EXPECT_EQ(error->code(), 0);
      EXPECT_EQ(shown(error->domain()), shown(VXFoundationBundleIdentifier));
      EXPECT_EQ(shown(error->userInfo()),
                shown(NSLocalizedDescriptionKey) + "=The keychain attributes are invalid");
      EXPECT_EQ(stateOf(*item), before);
    }
  }
  EXPECT_EQ(storage->transactions, 0);
  EXPECT_TRUE(logged.empty());
}

TEST_F(VXKeychainItemTest, AnAddBindsTheItemToItsEntry) {
  const auto item = genericItem();
  RefPtr<NSError> untouched = NSError::errorWithDomain("host", 7, nullptr);
  ASSERT_TRUE(item->addItemToKeychain(&untouched));
  EXPECT_EQ(untouched->code(), 7);
  EXPECT_EQ(shown(item->keychainItemRequest()),
            "account=ann valueData=secret label=Mail class=generic password service=mail returnAttributes=1");
  EXPECT_EQ(item->keychainItemResponse()->count(), 4u);
  EXPECT_EQ(shown(item->password()), "secret");

  const auto twin = genericItem("ann", "other");
  EXPECT_FALSE(twin->addItemToKeychain(&untouched));
  EXPECT_EQ(untouched->code(), -200);
  EXPECT_FALSE(twin->keychainItemRequest() || twin->keychainItemResponse());
}

TEST_F(VXKeychainItemTest, AFoundItemIsFilledByARefresh) {
  ASSERT_TRUE(internetItem(8080, 4)->addItemToKeychain());
  const auto item = VXInternetKeychainItem::findKeychainItemForUsername("ann", "host", nullptr, 0,
                                                                        VXInternetKeychainItemProtocolNone);
  EXPECT_EQ(stateOf(*item), State("nil", "nil", "nil", item->keychainItemRequest().get(), nullptr));
  const std::string request = shown(item->keychainItemRequest());
  ASSERT_TRUE(item->refreshItemFromKeychainIncludePassword(false));
  EXPECT_FALSE(item->password());
  EXPECT_EQ(item->protocol(), VXInternetKeychainItemProtocolSSH);
  ASSERT_TRUE(item->refreshItemFromKeychainIncludePassword(true));
  EXPECT_EQ(shown(item->password()), "secret");
  EXPECT_EQ(std::tuple(item->port(), shown(item->path()), shown(item->server())),
            std::tuple(8080, "/a", "host"));
  EXPECT_EQ(shown(item->keychainItemRequest()), request) << "a refresh changed the request";
  EXPECT_TRUE(item->isEqual(internetItem(8080, 4)));
}

TEST_F(VXKeychainItemTest, ARefreshFollowsTheStoreAndKeepsTheSecretUnlessAsked) {
  const auto item = genericItem(), other = genericItem();
  ASSERT_TRUE(item->addItemToKeychain());
  other->setKeychainItemRequest(item->keychainItemRequest());
  other->setKeychainItemResponse(item->keychainItemResponse());
  other->setPassword("changed");
  other->setLabel("Changed");
  ASSERT_TRUE(other->updateItemInKeychain());
  ASSERT_TRUE(item->refreshItemFromKeychainIncludePassword(false));
  EXPECT_EQ(shown(item->label()) + " " + shown(item->password()), "Changed secret");
  ASSERT_TRUE(item->refreshItemFromKeychainIncludePassword(true));
  EXPECT_EQ(shown(item->password()), "changed");
}

TEST_F(VXKeychainItemTest, ARefreshWithDataRefusesASecretThatIsNoPassword) {
  for (const char* secret : {"", "\xff\xfe"}) {
    const auto query = VXGenericKeychainItem::queryDictionaryWithUsername("bob", "mail");
    query->setObject(bytes(secret), kSecValueData);
    ASSERT_EQ(SecItemAdd(query), errSecSuccess);
    const auto item = genericItem();
    item->setKeychainItemRequest(query);
    const State before = stateOf(*item);
    RefPtr<NSError> error;
    EXPECT_FALSE(item->refreshItemFromKeychainIncludePassword(true));
    EXPECT_FALSE(item->refreshItemFromKeychainIncludePassword(true, &error));
    EXPECT_EQ(error->code(), 0);
    EXPECT_EQ(stateOf(*item), before);
    EXPECT_TRUE(item->refreshItemFromKeychainIncludePassword(false));
    ASSERT_EQ(SecItemDelete(query), errSecSuccess);
  }
}

TEST_F(VXKeychainItemTest, AnUpdateAsksWithTheRequestAndADeletionWithTheFields) {
  const auto item = genericItem();
  ASSERT_TRUE(item->addItemToKeychain());
  item->setUsername("bob");
  const State before = stateOf(*item);
  ASSERT_TRUE(item->updateItemInKeychain());
  EXPECT_EQ(stateOf(*item), before);
  EXPECT_FALSE(item->refreshItemFromKeychainIncludePassword(false)) << "the request still names ann";
  RefPtr<NSError> error;
  EXPECT_TRUE(item->deleteItemFromKeychain(&error));
  EXPECT_FALSE(error) << "bob's entry was there to be deleted";
  EXPECT_TRUE(item->deleteItemFromKeychain(&error));
  EXPECT_EQ(error->code(), -201);
}

TEST_F(VXKeychainItemTest, AResponseFillsTheFields) {
  const auto item = internetItem(80, 2);
  const auto response =
      NSDictionary::dictionaryWithObjectsAndKeys({{"eve", kSecAttrAccount}, {"gopher", kSecAttrProtocol}});
  item->populateKeychainItemWithKeychainResponse(response);
  EXPECT_EQ(stateOf(*item), State("nil", "eve", "secret", nullptr, &*response));
  EXPECT_EQ(std::tuple(item->protocol(), item->port(), shown(item->server()), shown(item->path())),
            std::tuple(VXInternetKeychainItemProtocolNone, 0, "nil", "nil"));
  item->setProtocol(VXInternetKeychainItemProtocolFTP);
  item->populateKeychainItemWithKeychainResponse(nullptr);
  EXPECT_EQ(stateOf(*item), State("nil", "nil", "secret", nullptr, nullptr));
  EXPECT_EQ(item->protocol(), VXInternetKeychainItemProtocolFTP);

  const auto generic = genericItem();
  generic->populateKeychainItemWithKeychainResponse(NSDictionary::dictionary());
  EXPECT_FALSE(generic->serviceName());
}

TEST_F(VXKeychainItemTest, MapsHoldWhatIsPresentInOrder) {
  const auto query = [](std::int64_t port, std::uint64_t protocol, Text path = nullptr) {
    return shown(VXInternetKeychainItem::queryDictionaryWithUsername(
        "ann", "host", path, port, VXInternetKeychainItemProtocol(protocol)));
  };
  EXPECT_EQ(query(0, 0), "class=internet password account=ann server=host");
  EXPECT_EQ(query(-1, 0, ""), "class=internet password account=ann server=host path=");
  EXPECT_EQ(query(8, 3, "/"), "class=internet password account=ann server=host port=8 path=/ protocol=ftp");
  EXPECT_EQ(shown(internetItem(-1, 0)->_createAttributesDictionary()),
            "account=ann valueData=secret class=internet password server=host port=-1 path=/a");
  EXPECT_EQ(shown(internetItem(0, 4, nullptr, nullptr)->_createAttributesDictionary()),
            "account=ann valueData=secret class=internet password protocol=ssh");
  EXPECT_EQ(shown(VXGenericKeychainItem::queryDictionaryWithUsername(nullptr, "s")),
            "class=generic password service=s");
  EXPECT_EQ(shown(VXGenericKeychainItem::alloc()->_createAttributesDictionary()), "class=generic password");
}

TEST_F(VXKeychainItemTest, AProtocolBeyondTheTableRaisesWhereverAMapIsMade) {
  const auto storage = answerAlways(errSecParam);
  for (const std::uint64_t protocol : {std::uint64_t{5}, std::numeric_limits<std::uint64_t>::max()}) {
    const auto item = bound(internetItem());
    item->setProtocol(VXInternetKeychainItemProtocol(protocol));
    for (const Operation operation : validatingOperations) {
      RefPtr<NSError> error;
      try {
        operation(*item, &error);
        ADD_FAILURE() << "nothing was raised";
      } catch (const NSException& exception) {
        EXPECT_EQ(shown(exception.name()), shown(NSInvalidArgumentException));
        EXPECT_EQ(shown(exception.reason()), "unknown protocol " + std::to_string(protocol));
        EXPECT_FALSE(exception.userInfo());
      }
      EXPECT_FALSE(error);
    }
    EXPECT_EQ(raised([&] {
                VXInternetKeychainItem::findKeychainItemForUsername("ann", "host", nullptr, 0,
                                                                    VXInternetKeychainItemProtocol(protocol));
              }),
              "NSInvalidArgumentException");
    EXPECT_EQ(storage->transactions, 0);
    EXPECT_FALSE(refresh(*item, nullptr));
    EXPECT_EQ(storage->transactions.exchange(0), 1) << "a refresh makes no map of the fields";
  }
}

TEST_F(VXKeychainItemTest, EqualityIsOfTheFieldsAndOneSided) {
  const auto equal = [](const Ref<VXKeychainItem>& a, const Ref<VXKeychainItem>& b) {
    return std::pair(a->isEqual(b), b->isEqual(a));
  };
  const std::pair both(true, true), neither(false, false), first(true, false);
  const auto password = VXPasswordKeychainItem::alloc();
  password->initWithUsername("ann", "secret", "Mail");
  EXPECT_EQ(equal(genericItem(), bound(genericItem())), both) << "the maps take no part";
  EXPECT_EQ(equal(genericItem("ann", "secret", nullptr), genericItem("ann", "secret", nullptr)), both);
  EXPECT_EQ(equal(password, genericItem()), first);
  EXPECT_EQ(equal(genericItem(), genericItem("bob")), neither);
  EXPECT_EQ(equal(genericItem(), genericItem("ann", "other")), neither);
  EXPECT_EQ(equal(genericItem(), genericItem("ann", "secret", nullptr)), neither);
  EXPECT_EQ(equal(genericItem(), genericItem("ann", "secret", "Mail", "chat")), neither);
  EXPECT_EQ(equal(genericItem(), genericItem("ann", "secret", "Mail", nullptr)), neither);
  EXPECT_EQ(equal(internetItem(), internetItem()), both);
  EXPECT_EQ(equal(internetItem(80), internetItem(81)), neither);
  EXPECT_EQ(equal(internetItem(80, 1), internetItem(80, 2)), neither);
  EXPECT_EQ(equal(internetItem(80, 1, "host"), internetItem(80, 1, "h")), neither);
  EXPECT_EQ(equal(internetItem(80, 1, "host", nullptr), internetItem()), neither);
  EXPECT_FALSE(genericItem()->isEqual(nullptr));
  EXPECT_FALSE(genericItem()->isEqual(text("ann")));
  const auto item = genericItem();
  EXPECT_EQ(item->hash(), static_cast<const NSObject&>(*item).NSObject::hash());
}

TEST_F(VXKeychainItemTest, TextsAndBytesAreCopiedAndMapsShared) {
  const auto grown = NSMutableString::stringWithString("a");
  const auto data = NSMutableData::dataWithBytes("s", 1);
  const auto item = VXGenericKeychainItem::alloc();
  ASSERT_TRUE(item->initWithUsernameData(grown, data, grown));
  item->setServiceName(grown);
  const auto internet = internetItem(0, 0, grown, grown);
  grown->appendString("b");
  data->appendBytes("t", 1);
  EXPECT_EQ(shown(item->username()) + shown(item->label()) + shown(item->serviceName()) + shown(item->data()),
            "aaas");
  EXPECT_EQ(shown(internet->server()) + shown(internet->path()), "aa");
}

TEST_F(VXKeychainItemTest, APasswordIsTheUTF8OfItsText) {
  const auto item = genericItem("ann", "\u00e9\U0001F511");
  EXPECT_EQ(shown(item->data()), "\xc3\xa9\xf0\x9f\x94\x91");
  EXPECT_TRUE(item->data()->holdsSecret() && item->password()->holdsSecret());
  EXPECT_EQ(shown(item->password()), "\xc3\xa9\xf0\x9f\x94\x91");
  item->setData(bytes("\xff"));
  EXPECT_FALSE(item->password());
  for (const RefPtr<NSString>& none :
       {RefPtr<NSString>(), RefPtr<NSString>(NSString::stringWithCharacters(u"\xd800"))}) {
    item->setPassword("x");
    item->setPassword(none);
    EXPECT_FALSE(item->data());
  }
}
