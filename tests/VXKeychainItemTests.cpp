#include <limits>
#include <map>
#include <sstream>
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

/// An item, or a question for one, as keychain-items.tsv writes it.
class Written {
 public:
  explicit Written(const std::string& cell) {
    std::istringstream words(cell);
    words >> kind_;
    for (std::string word; words >> word;)
      fields_[word.substr(0, word.find('='))] = unescaped(word.substr(word.find('=') + 1));
  }

  Ref<VXPasswordKeychainItem> item() const {
    const Ref<VXPasswordKeychainItem> made = make();
    if (fields_.count("data")) made->setData(bytes(fields_.at("data")));
    return made;
  }

  Ref<NSDictionary> query() const {
    if (kind_ == "generic")
      return VXGenericKeychainItem::queryDictionaryWithUsername(field("account"), field("service"));
    return VXInternetKeychainItem::queryDictionaryWithUsername(field("account"), field("server"),
                                                               field("path"), number("port"), protocol());
  }

 private:
  Ref<VXPasswordKeychainItem> make() const {
    if (kind_ == "generic")
      return VXGenericKeychainItem::keychainItemWithUsername(field("account"), field("password"),
                                                             field("label"), field("service"));
    if (kind_ == "internet")
      return VXInternetKeychainItem::keychainItemWithUsername(field("account"), field("password"),
                                                              field("label"), field("server"), field("path"),
                                                              number("port"), protocol());
    const auto password = VXPasswordKeychainItem::alloc();
    password->initWithUsername(field("account"), field("password"), field("label"));
    return password;
  }
  RefPtr<NSString> field(const char* name) const {
    return fields_.count(name) ? RefPtr<NSString>(text(fields_.at(name))) : nullptr;
  }
  std::int64_t number(const char* name) const {
    return fields_.count(name) ? std::stoll(fields_.at(name)) : 0;
  }
  VXInternetKeychainItemProtocol protocol() const {
    return static_cast<VXInternetKeychainItemProtocol>(number("protocol"));
  }

  std::string kind_;
  std::map<std::string, std::string> fields_;
};

Ref<VXGenericKeychainItem> genericItem(Text password = "secret") {
  return VXGenericKeychainItem::keychainItemWithUsername("ann", password, "Mail", "mail");
}

Ref<VXInternetKeychainItem> internetItem(std::int64_t port = 80, std::uint64_t protocol = 1) {
  return VXInternetKeychainItem::keychainItemWithUsername("ann", "secret", nullptr, "host", "/a", port,
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

void expectError(const RefPtr<NSError>& error, std::int64_t code, const std::string& description,
                 std::size_t entries) {
  ASSERT_TRUE(error);
  EXPECT_EQ(shown(error->domain()), shown(VXFoundationBundleIdentifier));
  EXPECT_EQ(error->code(), code);
  EXPECT_EQ(shown(error->userInfo()->objectForKey(NSLocalizedDescriptionKey)), description);
  EXPECT_EQ(error->userInfo()->count(), entries);
}

class VXKeychainItemTest : public KeychainTest {
 protected:
  /// Calls `each` with the rows of one kind, and fails where there is none.
  template <class Each>
  static void forRows(const std::string& kind, Each&& each) {
    int count = 0;
    for (const auto& row : vectors("keychain-items.tsv")) {
      if (row[0] != kind) continue;
      SCOPED_TRACE(testing::PrintToString(row));
      each(row);
      ++count;
    }
    EXPECT_GT(count, 0);
  }
};

}  // namespace

TEST_F(VXKeychainItemTest, EveryFailingStatusBecomesAnErrorAndOneLogLineWhenAsked) {
  forRows("status", [&](const auto& row) {
    const auto status = static_cast<OSStatus>(std::stoll(row[1]));
    answerAlways(status);
    for (const Operation operation : allOperations) {
      const bool expected = operation == erase && status == errSecItemNotFound;
      const auto item = bound(genericItem());
      const State before = stateOf(*item);
      logged.clear();
      EXPECT_EQ(operation(*item, nullptr), expected);
      EXPECT_TRUE(logged.empty());
      RefPtr<NSError> error;
      EXPECT_EQ(operation(*item, &error), expected);
      EXPECT_EQ(stateOf(*item), before);
      EXPECT_EQ(logged, std::vector{"_VXKeychainItemCheckStatus Error: " + row[1]});
      expectError(error, std::stoll(row[2]), row[3], 2);
      const auto underlying = dynamicCast<NSError>(error->userInfo()->objectForKey(NSUnderlyingErrorKey));
      ASSERT_TRUE(underlying);
      EXPECT_EQ(shown(underlying->domain()), shown(NSOSStatusErrorDomain));
      EXPECT_EQ(underlying->code(), status);
      EXPECT_EQ(shown(underlying->userInfo()),
                shown(NSLocalizedDescriptionKey) + "=" + shown(SecCopyErrorMessageString(status)));
    }
  });
}

TEST_F(VXKeychainItemTest, IncompleteAttributesAreRefusedBeforeAnyStoreIsAsked) {
  const auto storage = answerAlways(errSecParam);
  forRows("incomplete", [](const auto& row) {
    const auto item = bound(Written(row[1]).item());
    const State before = stateOf(*item);
    for (const Operation operation : validatingOperations) {
      EXPECT_FALSE(operation(*item, nullptr));
      RefPtr<NSError> error;
      EXPECT_FALSE(operation(*item, &error));
      expectError(error, 0, "The keychain attributes are invalid", 1);
      EXPECT_EQ(stateOf(*item), before);
    }
  });
  EXPECT_EQ(storage->transactions, 0);
  EXPECT_TRUE(logged.empty());
}

TEST_F(VXKeychainItemTest, MapsHoldWhatIsPresentInOrder) {
  forRows("attributes", [](const auto& row) {
    EXPECT_EQ(shown(Written(row[1]).item()->_createAttributesDictionary()), row[2]);
  });
  forRows("query", [](const auto& row) { EXPECT_EQ(shown(Written(row[1]).query()), row[2]); });
}

TEST_F(VXKeychainItemTest, EqualityIsOfTheFieldsAndOneSided) {
  forRows("equal", [](const auto& row) {
    const auto first = Written(row[1]).item(), second = bound(Written(row[2]).item());
    const auto equal = [](const auto& a, const auto& b) { return a->isEqual(b) ? "yes" : "no"; };
    EXPECT_EQ(std::string(equal(first, second)) + " " + equal(second, first), row[3]);
  });
  const auto item = genericItem();
  EXPECT_FALSE(item->isEqual(nullptr));
  EXPECT_FALSE(item->isEqual(text("ann")));
  EXPECT_EQ(item->hash(), static_cast<const NSObject&>(*item).NSObject::hash());
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

  const auto twin = genericItem("other");
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

TEST_F(VXKeychainItemTest, TextsAndBytesAreCopiedAndMapsShared) {
  const auto grown = NSMutableString::stringWithString("a");
  const auto data = NSMutableData::dataWithBytes("s", 1);
  const auto item = VXGenericKeychainItem::alloc();
  ASSERT_TRUE(item->initWithUsernameData(grown, data, grown));
  item->setServiceName(grown);
  const auto internet = VXInternetKeychainItem::keychainItemWithUsername(grown, grown, grown, grown, grown, 0,
                                                                         VXInternetKeychainItemProtocolNone);
  grown->appendString("b");
  data->appendBytes("t", 1);
  EXPECT_EQ(shown(item->username()) + shown(item->label()) + shown(item->serviceName()) + shown(item->data()),
            "aaas");
  EXPECT_EQ(shown(internet->server()) + shown(internet->path()), "aa");
}

TEST_F(VXKeychainItemTest, APasswordIsTheUTF8OfItsText) {
  const auto item = genericItem("\u00e9\U0001F511");
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
