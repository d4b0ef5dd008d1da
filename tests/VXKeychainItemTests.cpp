#include <map>
#include <set>
#include <stdexcept>
#include <tuple>

#include "tests/support/KeychainSupport.h"
#include "tests/support/RecordedAssertions.h"

namespace {

/// The fields of an item that a script writes as a map.
class Fields {
 public:
  explicit Fields(const std::string& written) : map_(writtenMap(written)) {}

  NSRef<VXPasswordKeychainItem> item() const {
    const NSRef<VXPasswordKeychainItem> made = itemWithPassword();
    if (!made->data()) made->setData(value<NSData>(kSecValueData));
    return made;
  }

  NSRefPtr<NSArray> all(bool includePassword, NSRefPtr<NSError>* error) const {
    if (isGeneric())
      return VXGenericKeychainItem::findAllKeychainItemsForUsername(account(), service(), includePassword,
                                                                    error);
    return VXInternetKeychainItem::findAllKeychainItemsForUsername(account(), server(), path(), port(),
                                                                   protocol(), includePassword, error);
  }

  /// Sets the fields that are written.
  void change(VXPasswordKeychainItem& item) const {
    if (account()) item.setUsername(account());
    if (label()) item.setLabel(label());
    if (value<NSData>(kSecValueData)) item.setData(value<NSData>(kSecValueData));
    auto* internet = dynamic_cast<VXInternetKeychainItem*>(&item);
    if (internet && path()) internet->setPath(path());
    if (internet && port()) internet->setPort(port());
    if (internet && protocol()) internet->setProtocol(protocol());
  }

  NSRef<VXPasswordKeychainItem> finder() const {
    if (isGeneric()) return VXGenericKeychainItem::findKeychainItemForUsername(account(), service());
    return VXInternetKeychainItem::findKeychainItemForUsername(account(), server(), path(), port(),
                                                               protocol());
  }

 private:
  NSRef<VXPasswordKeychainItem> itemWithPassword() const {
    if (isGeneric())
      return VXGenericKeychainItem::keychainItemWithUsername(account(), password(), label(), service());
    if (text(kSecClass))
      return VXInternetKeychainItem::keychainItemWithUsername(account(), password(), label(), server(),
                                                              path(), port(), protocol());
    const auto common = VXPasswordKeychainItem::alloc();
    common->initWithUsername(account(), password(), label());
    return common;
  }

  template <class Kind>
  NSRefPtr<Kind> value(const NSRef<NSString>& key) const {
    return NSDynamicCast<Kind>(map_->objectForKey(key));
  }
  NSRefPtr<NSString> text(const NSRef<NSString>& key) const { return value<NSString>(key); }
  std::int64_t number(const NSRef<NSString>& key) const {
    const auto written = value<NSNumber>(key);
    return written ? written->integerValue() : 0;
  }
  bool isGeneric() const { return kSecClassGenericPassword->isEqual(text(kSecClass)); }
  NSRefPtr<NSString> account() const { return text(kSecAttrAccount); }
  NSRefPtr<NSString> label() const { return text(kSecAttrLabel); }
  NSRefPtr<NSString> service() const { return text(kSecAttrService); }
  NSRefPtr<NSString> server() const { return text(kSecAttrServer); }
  NSRefPtr<NSString> path() const { return text(kSecAttrPath); }
  std::int64_t port() const { return number(kSecAttrPort); }
  VXInternetKeychainItemProtocol protocol() const {
    return VXInternetKeychainItemProtocol(number(kSecAttrProtocol));
  }
  NSRefPtr<NSString> password() const {
    const auto secret = value<NSData>(kSecValueData);
    return secret ? NSString::stringWithData(secret, NSUTF8StringEncoding) : nullptr;
  }

  NSRefPtr<NSDictionary> map_;
};

void share(VXKeychainItem& item, const VXKeychainItem& other) {
  item.setKeychainItemRequest(other.keychainItemRequest());
  item.setKeychainItemResponse(other.keychainItemResponse());
}

/// An item that has both maps, without a store having been asked.
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

/// Whether the operation was done, and the code of the error where it gave one.
std::string outcome(const std::string& operation, VXKeychainItem& item) {
  const NSRefPtr<NSError> untouched = NSError::errorWithDomain("host", 7, nullptr);
  NSRefPtr<NSError> error = untouched;
  const State before = stateOf(item);
  const bool done = perform(operation, item, &error);
  const bool fills = done && operation != "update" && !operation.starts_with("delete");
  EXPECT_TRUE(fills || stateOf(item) == before) << "the item was changed";
  std::string told = done ? "yes" : "no";
  if (error != untouched) told.append(1, ' ').append(std::to_string(error->code()));
  return told;
}

/// The answer of an action, or the exception that it raises.
template <class Action>
std::string answerOf(Action&& action) {
  try {
    return action();
  } catch (const NSException& exception) {
    EXPECT_FALSE(exception.userInfo());
    return shown(exception.name()) + ": " + shown(exception.reason());
  }
}

/// What an add, an update and a deletion of an item all answer, with and without a place for an error.
std::string refusal(VXKeychainItem& item) {
  std::set<std::string> answers;
  for (const char* operation : {"add", "update", "delete"}) {
    answers.insert(answerOf([&] { return outcome(operation, item); }));
    answerOf([&]() -> std::string {
      EXPECT_FALSE(perform(operation, item, nullptr));
      return "";
    });
  }
  return answers.size() == 1 ? *answers.begin() : testing::PrintToString(answers);
}

std::string equality(const std::string& first, const std::string& second) {
  const auto one = Fields(first).item(), other = boundItem(second);
  return std::string(one->isEqual(other) ? "yes " : "no ") + (other->isEqual(one) ? "yes" : "no");
}

class VXKeychainItemTest : public KeychainTest {
 protected:
  /// Does what a step of VXKeychainItem.txt says, and gives what it answers.
  std::string answerTo(const std::string& step) {
    const auto [operation, rest] = cut(step, " ");
    const auto [name, detail] = cut(rest, " ");
    std::string answer;
    if (operation == "equal")
      answer = equality(cut(rest, " / ").first, cut(rest, " / ").second);
    else if (operation == "refused")
      answer = refusal(*boundItem(rest));
    else if (operation == "asked")
      answer = std::to_string(answering_->transactions.exchange(0));
    else if (operation == "answer")
      answering_ = answerAlways(std::stoi(rest));
    else if (operation == "store")
      answer = std::to_string(SecItemAdd(writtenMap(rest)));
    else if (operation == "make")
      items_.insert_or_assign(name, Fields(detail).item());
    else if (operation == "find")
      items_.insert_or_assign(name, Fields(detail).finder());
    else if (operation.starts_with("findAll"))
      answer = findAll(name, Fields(detail), operation == "findAllWithPassword");
    else
      answer = answerOfItem(operation, *items_.at(name), detail);
    return answer;
  }

 private:
  /// How many there are, or the platform's status.
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

  std::string answerOfItem(const std::string& operation, VXPasswordKeychainItem& item,
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
  std::shared_ptr<AnsweringStorage> answering_;
};

NSRef<VXGenericKeychainItem> genericItem(NSStringArg password = "secret") {
  return VXGenericKeychainItem::keychainItemWithUsername("ann", password, "Mail", "mail");
}

}  // namespace

TEST_F(VXKeychainItemTest, DoesWhatTheScriptSays) {
  const auto expectStep = [&](const std::string& step, const std::string& answer) {
    EXPECT_EQ(answerOf([&] { return answerTo(step); }), answer);
  };
  const auto begin = [] { secSetDefaultStorage(std::make_shared<SecMemoryStorage>()); };
  const RecordedAssertions finderMayBeAskedWithLess;
  EXPECT_GT(runScript("VXKeychainItem.txt", begin, expectStep), 100u);
}

TEST_F(VXKeychainItemTest, EveryFailingStatusBecomesAnErrorAndOneLogLineWhenAsked) {
  for (const auto& row : vectors("keychain-statuses.tsv")) {
    const OSStatus status = std::stoi(row[0]);
    answerAlways(status);
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

TEST_F(VXKeychainItemTest, AnItemEqualsNothingElseAndHashesAsItself) {
  const auto item = genericItem();
  EXPECT_FALSE(item->isEqual(nullptr));
  EXPECT_FALSE(item->isEqual(text("ann")));
  EXPECT_EQ(item->hash(), static_cast<const NSObject&>(*item).NSObject::hash());
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
  item->setData(dataOf("\xff"));
  EXPECT_FALSE(item->password());
  for (const NSRefPtr<NSString>& none :
       {NSRefPtr<NSString>(), NSRefPtr<NSString>(NSString::stringWithCharacters(u"\xd800"))}) {
    item->setPassword("x");
    item->setPassword(none);
    EXPECT_FALSE(item->data());
  }
}
