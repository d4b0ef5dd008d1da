#include <Foundation/NSMutableString.h>
#include <VXFoundation/VXFoundationConstants.h>
#include <VXFoundation/VXKeychainItem.h>

#include <map>
#include <set>
#include <stdexcept>
#include <tuple>

#include "tests/support/KeychainSupport.h"
#include "tests/support/RecordedAssertions.h"

namespace {

/// The fields of an item that a script writes as a dictionary.
class Fields {
 public:
  explicit Fields(const std::string& written) : dictionary_(writtenMap(written)) {}

  NSRef<VXPasswordKeychainItem> item() const {
    const NSRef<VXPasswordKeychainItem> made = itemWithPassword();
    if (!made->data()) made->setData(secret_);
    return made;
  }

  NSRefPtr<NSArray> all(bool includePassword, NSRefPtr<NSError>* error) const {
    if (isGeneric())
      return VXGenericKeychainItem::findAllKeychainItemsForUsername(account_, service_, includePassword,
                                                                    error);
    return VXInternetKeychainItem::findAllKeychainItemsForUsername(account_, server_, path_, port_, protocol_,
                                                                   includePassword, error);
  }

  /// Sets the fields that the dictionary has.
  void change(VXPasswordKeychainItem& item) const {
    if (account_) item.setUsername(account_);
    if (label_) item.setLabel(label_);
    if (secret_) item.setData(secret_);
    auto* internet = dynamic_cast<VXInternetKeychainItem*>(&item);
    if (internet && path_) internet->setPath(path_);
    if (internet && port_) internet->setPort(port_);
    if (internet && protocol_) internet->setProtocol(protocol_);
  }

  NSRef<VXPasswordKeychainItem> finder() const {
    if (isGeneric()) return VXGenericKeychainItem::findKeychainItemForUsername(account_, service_);
    return VXInternetKeychainItem::findKeychainItemForUsername(account_, server_, path_, port_, protocol_);
  }

 private:
  NSRef<VXPasswordKeychainItem> itemWithPassword() const {
    const auto password = secret_ ? NSString::stringWithData(secret_, NSUTF8StringEncoding) : nullptr;
    if (isGeneric())
      return VXGenericKeychainItem::keychainItemWithUsername(account_, password, label_, service_);
    if (dictionary_->objectForKey(kSecClass))
      return VXInternetKeychainItem::keychainItemWithUsername(account_, password, label_, server_, path_,
                                                              port_, protocol_);
    const auto common = VXPasswordKeychainItem::alloc();
    common->initWithUsername(account_, password, label_);
    return common;
  }

  template <class Kind = NSString>
  NSRefPtr<Kind> value(const NSRef<NSString>& key) const {
    return NSDynamicCast<Kind>(dictionary_->objectForKey(key));
  }
  std::int64_t integer(const NSRef<NSString>& key) const {
    const auto written = value<NSNumber>(key);
    return written ? written->integerValue() : 0;
  }
  bool isGeneric() const { return kSecClassGenericPassword->isEqual(value(kSecClass)); }

  const NSRefPtr<NSDictionary> dictionary_;
  const NSRefPtr<NSString> account_ = value(kSecAttrAccount), label_ = value(kSecAttrLabel),
                           service_ = value(kSecAttrService), server_ = value(kSecAttrServer),
                           path_ = value(kSecAttrPath);
  const std::int64_t port_ = integer(kSecAttrPort);
  const VXInternetKeychainItemProtocol protocol_ = VXInternetKeychainItemProtocol(integer(kSecAttrProtocol));
  const NSRefPtr<NSData> secret_ = value<NSData>(kSecValueData);
};

void share(VXKeychainItem& item, const VXKeychainItem& other) {
  item.setKeychainItemRequest(other.keychainItemRequest());
  item.setKeychainItemResponse(other.keychainItemResponse());
}

/// Returns an item with a request and a response, without querying a store.
NSRef<VXPasswordKeychainItem> boundItem(const std::string& fields) {
  const auto item = Fields(fields).item();
  item->setKeychainItemRequest(NSDictionary::dictionaryWithObject(kSecClassGenericPassword, kSecClass));
  item->setKeychainItemResponse(NSDictionary::dictionary());
  return item;
}

using State = std::tuple<std::string, std::string, std::string, NSDictionary*, NSDictionary*>;
State stateOf(const VXKeychainItem& item) {
  return {shown(item.label()), shown(item.username()), shown(item.data()), item.keychainItemRequest().get(),
          item.keychainItemResponse().get()};
}

bool perform(const std::string& operation, VXKeychainItem& item, NSRefPtr<NSError>* error) {
  if (operation == "add") return item.addItemToKeychain(error);
  if (operation == "refresh") return item.refreshItemFromKeychainIncludeData(false, error);
  if (operation == "refreshWithData") return item.refreshItemFromKeychainIncludeData(true, error);
  if (operation == "update") return item.updateItemInKeychain(error);
  if (operation == "delete") return item.deleteItemFromKeychain(error);
  if (operation == "follow") return item.updateAndFollow(error);
  if (operation == "deleteFound") return item.deleteFoundItem(error);
  throw std::invalid_argument("no operation " + operation);
}

/// Performs the operation; returns whether it succeeded, and the code of the error that it stored.
std::string outcome(const std::string& operation, VXKeychainItem& item) {
  const NSRefPtr<NSError> untouched = NSError::errorWithDomain("host", 7, nullptr);
  NSRefPtr<NSError> error = untouched;
  const State before = stateOf(item);
  const bool done = perform(operation, item, &error);
  const bool fills = done && operation != "update" && !operation.starts_with("delete");
  EXPECT_TRUE(fills || stateOf(item) == before) << "the item was changed";
  std::string result = done ? "yes" : "no";
  if (error != untouched) result.append(1, ' ').append(std::to_string(error->code()));
  return result;
}

/// Returns the result of an action, or the exception that it raises.
template <class Action>
std::string resultOf(Action&& action) {
  try {
    return action();
  } catch (const NSException& exception) {
    EXPECT_FALSE(exception.userInfo());
    return shown(exception.name()) + ": " + shown(exception.reason());
  }
}

/// Returns the common result of adding, updating and deleting an item, each with and without a place for an
/// error.
std::string refusal(VXKeychainItem& item) {
  std::set<std::string> results;
  for (const char* operation : {"add", "update", "delete"}) {
    results.insert(resultOf([&] { return outcome(operation, item); }));
    raised([&] { EXPECT_FALSE(perform(operation, item, nullptr)); });
  }
  return results.size() == 1 ? *results.begin() : testing::PrintToString(results);
}

std::string equality(const std::string& first, const std::string& second) {
  const auto one = Fields(first).item(), other = boundItem(second);
  return std::string(one->isEqual(other) ? "yes " : "no ") + (other->isEqual(one) ? "yes" : "no");
}

class VXKeychainItemTest : public KeychainTest {
 protected:
  /// Performs a step of VXKeychainItem.txt and returns its result.
  std::string resultOfStep(const std::string& step) {
    const auto [operation, rest] = cut(step, " ");
    const auto [name, detail] = cut(rest, " ");
    std::string result;
    if (operation == "equal")
      result = equality(cut(rest, " / ").first, cut(rest, " / ").second);
    else if (operation == "refused")
      result = refusal(*boundItem(rest));
    else if (operation == "asked")
      result = std::to_string(returning_->transactions.exchange(0));
    else if (operation == "return")
      returning_ = returnAlways(std::stoi(rest));
    else if (operation == "store")
      result = std::to_string(SecItemAdd(writtenMap(rest)));
    else if (operation == "make")
      items_.insert_or_assign(name, Fields(detail).item());
    else if (operation == "find")
      items_.insert_or_assign(name, Fields(detail).finder());
    else if (operation.starts_with("findAll"))
      result = findAll(name, Fields(detail), operation == "findAllWithPassword");
    else
      result = resultOfItem(operation, *items_.at(name), detail);
    return result;
  }

 private:
  /// Returns how many there are, or the platform's status.
  std::string findAll(const std::string& name, const Fields& fields, bool includePassword) {
    NSRefPtr<NSError> error;
    const auto all = fields.all(includePassword, &error);
    if (!all)
      return std::to_string(
          NSDynamicCast<NSError>(error->userInfo()->objectForKey(NSUnderlyingErrorKey))->code());
    std::size_t number = 0;
    for (const NSRef<NSObject> each : *all)
      items_.insert_or_assign(name + std::to_string(++number), NSDynamicCast<VXPasswordKeychainItem>(each));
    return std::to_string(all->count());
  }

  std::string resultOfItem(const std::string& operation, VXPasswordKeychainItem& item,
                           const std::string& detail) {
    if (operation == "fields") return shown(item._createAttributesDictionary());
    if (operation == "request") return shown(item.keychainItemRequest());
    if (operation == "response") return shown(item.keychainItemResponse());
    if (operation == "fill")
      item.populateKeychainItemWithKeychainResponse(writtenMap(detail));
    else if (operation == "change")
      Fields(detail).change(item);
    else if (operation == "share")
      share(item, *items_.at(detail));
    else
      return outcome(operation, item);
    return "";
  }

  std::map<std::string, NSRef<VXPasswordKeychainItem>> items_;
  std::shared_ptr<StatusStorage> returning_;
};

NSRef<VXGenericKeychainItem> genericItem(NSStringArg password = "secret") {
  return VXGenericKeychainItem::keychainItemWithUsername("ann", password, "Mail", "mail");
}

}  // namespace

TEST_F(VXKeychainItemTest, FollowsTheScript) {
  const auto expectStep = [&](const std::string& step, const std::string& expected) {
    EXPECT_EQ(resultOf([&] { return resultOfStep(step); }), expected);
  };
  const auto begin = [] { secSetDefaultStorage(std::make_shared<SecMemoryStorage>()); };
  const RecordedAssertions findersMayLackAttributes;
  EXPECT_GT(runScript("VXKeychainItem.txt", begin, expectStep), 100u);
}

TEST_F(VXKeychainItemTest, EveryFailureBecomesAnErrorAndOneLogLineOnRequest) {
  for (const auto& row : vectors("keychain-statuses.tsv")) {
    const OSStatus status = std::stoi(row[0]);
    returnAlways(status);
    for (const std::string operation : {"add", "refresh", "refreshWithData", "update", "delete"}) {
      SCOPED_TRACE(operation + ": " + row[0]);
      const bool expected = operation == "delete" && status == errSecItemNotFound;
      const auto item = boundItem("class=generic account=ann valueData=secret service=mail");
      logged.clear();
      EXPECT_EQ(perform(operation, *item, nullptr), expected);
      EXPECT_TRUE(logged.empty());
      NSRefPtr<NSError> error;
      const State before = stateOf(*item);
      EXPECT_EQ(perform(operation, *item, &error), expected);
      EXPECT_EQ(stateOf(*item), before);
      EXPECT_EQ(logged, std::vector{"_VXKeychainItemCheckStatus Error: " + row[0]});
      EXPECT_EQ(shown(error), shown(VXFoundationBundleIdentifier) + " " + row[1] + ": " + row[2]);
      EXPECT_EQ(error->userInfo()->count(), 2u);
      EXPECT_EQ(
          shown(error->userInfo()->objectForKey(NSUnderlyingErrorKey)),
          shown(NSOSStatusErrorDomain) + " " + row[0] + ": " + shown(SecCopyErrorMessageString(status)));
    }
  }
}

TEST_F(VXKeychainItemTest, IncompleteAttributesAreAnErrorWithoutAStatus) {
  NSRefPtr<NSError> error;
  EXPECT_FALSE(genericItem(nullptr)->addItemToKeychain(&error));
  EXPECT_EQ(shown(error), shown(VXFoundationBundleIdentifier) + " 0: The keychain attributes are invalid");
  EXPECT_EQ(error->userInfo()->count(), 1u);
  EXPECT_TRUE(logged.empty());
}

TEST_F(VXKeychainItemTest, ItemsEqualNoOtherKindOfObjectAndHashByIdentity) {
  const auto item = genericItem();
  EXPECT_FALSE(item->isEqual(nullptr));
  EXPECT_FALSE(item->isEqual(text("ann")));
  EXPECT_EQ(item->hash(), static_cast<const NSObject&>(*item).NSObject::hash());
}

TEST_F(VXKeychainItemTest, StringsAndDataAreCopied) {
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

TEST_F(VXKeychainItemTest, APasswordIsStoredAsUTF8) {
  const auto item = genericItem("\u00e9\U0001F511");
  EXPECT_EQ(shown(item->data()), "\xc3\xa9\xf0\x9f\x94\x91");
  EXPECT_TRUE(item->data()->holdsSecret() && item->password()->holdsSecret());
  EXPECT_EQ(shown(item->password()), "\xc3\xa9\xf0\x9f\x94\x91");
  item->setData(dataOf("\xff"));
  EXPECT_FALSE(item->password());
  for (const NSRefPtr<NSString>& none :
       {NSRefPtr<NSString>(), NSRefPtr<NSString>(NSString::stringWithCharacters(u"\xd800"))}) {
    item->setPassword("x");
    item->setPassword(none);
    EXPECT_FALSE(item->data());
  }
}
