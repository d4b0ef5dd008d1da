#include <Security/Items/SecItemRequest.h>

#include <limits>
#include <span>

#include <Foundation/NSData.h>
#include <Foundation/NSNumber.h>

#include <Security/SecConstants.h>
#include <Security/SecFailure.h>

namespace {

constexpr auto generic = SecItemClass::genericPassword;
constexpr auto internet = SecItemClass::internetPassword;

struct TextAttribute {
  const NSRef<NSString>& key;
  std::optional<SecText> SecAttributes::*value;
  std::optional<SecItemClass> onlyOf;
};

// Made at its first use: when this file is initialised, the constants may not exist yet.
std::span<const TextAttribute> textAttributes() {
  static const TextAttribute attributes[] = {
      {kSecAttrAccount, &SecAttributes::account, std::nullopt},
      {kSecAttrLabel, &SecAttributes::label, std::nullopt},
      {kSecAttrService, &SecAttributes::service, generic},
      {kSecAttrServer, &SecAttributes::server, internet},
      {kSecAttrPath, &SecAttributes::path, internet},
      {kSecAttrProtocol, &SecAttributes::protocol, internet},
  };
  return attributes;
}

SecText textOf(const NSString& string) {
  return string.visit([](auto units) { return SecText(units.begin(), units.end()); });
}

std::optional<SecItemClass> classNamed(const NSString& name) {
  if (name.isEqual(kSecClassGenericPassword)) return generic;
  if (name.isEqual(kSecClassInternetPassword)) return internet;
  return std::nullopt;
}

/// Looks up each known attribute in a dictionary and counts those found, so that an unknown key is noticed.
class Reader {
 public:
  explicit Reader(const NSDictionary& dictionary) : dictionary_(dictionary) {}

  /// Returns the value of a key, or nil if the key is missing or its value is of another class.
  template <class Kind>
  NSRefPtr<Kind> value(const NSRef<NSString>& key) {
    const NSRefPtr<NSObject> object = dictionary_.objectForKey(key);
    if (!object) return nullptr;
    const NSRefPtr<Kind> value = NSDynamicCast<Kind>(object);
    if (value) ++read_;
    return value;
  }

  bool hasReadAll() const { return read_ == dictionary_.count(); }

 private:
  const NSDictionary& dictionary_;
  std::size_t read_ = 0;
};

std::optional<SecItemClass> readClass(Reader& reader, std::optional<SecItemClass> implied) {
  const auto name = reader.value<NSString>(kSecClass);
  return name ? classNamed(*name) : implied;
}

void readAttributes(Reader& reader, SecAttributes& attributes) {
  for (const TextAttribute& attribute : textAttributes()) {
    if (attribute.onlyOf.value_or(attributes.itemClass) != attributes.itemClass) continue;
    if (const auto text = reader.value<NSString>(attribute.key)) attributes.*attribute.value = textOf(*text);
  }
  if (attributes.itemClass != internet) return;
  if (const auto port = reader.value<NSNumber>(kSecAttrPort)) attributes.port = port->integerValue();
}

bool readFlag(Reader& reader, const NSRef<NSString>& key) {
  const auto flag = reader.value<NSNumber>(key);
  return flag && flag->boolValue();
}

std::size_t readLimit(Reader& reader) {
  const auto word = reader.value<NSString>(kSecMatchLimit);
  if (word) {
    secRequire(word->isEqual(kSecMatchLimitAll), errSecParam);
    return std::numeric_limits<std::size_t>::max();
  }
  const auto number = reader.value<NSNumber>(kSecMatchLimit);
  secRequire(number && !number->isBoolean() && number->integerValue() >= 1, errSecParam);
  return static_cast<std::size_t>(number->integerValue());
}

void addAttributes(const SecAttributes& attributes, NSMutableDictionary& dictionary) {
  dictionary.setObject(attributes.itemClass == generic ? kSecClassGenericPassword : kSecClassInternetPassword,
                       kSecClass);
  for (const TextAttribute& attribute : textAttributes()) {
    const auto& text = attributes.*attribute.value;
    if (text) dictionary.setObject(NSString::stringWithCharacters(*text), attribute.key);
  }
  if (attributes.port) dictionary.setObject(NSNumber::numberWithInteger(*attributes.port), kSecAttrPort);
}

}  // namespace

SecItemRequest secReadRequest(const NSRefPtr<NSDictionary>& dictionary, SecRequestKind kind,
                              std::optional<SecItemClass> implied) {
  secRequire(bool(dictionary), errSecParam);
  Reader reader(*dictionary);
  const auto itemClass = readClass(reader, implied);
  secRequire(itemClass.has_value(), errSecParam);
  SecItemRequest request;
  request.attributes.itemClass = *itemClass;
  readAttributes(reader, request.attributes);
  if (const auto secret = reader.value<NSData>(kSecValueData)) request.secret.emplace(secret->bytes());
  request.returnAttributes = readFlag(reader, kSecReturnAttributes);
  request.returnData = readFlag(reader, kSecReturnData);
  if (kind != SecRequestKind::change) request.exactly = readFlag(reader, kSecMatchExactly);
  if (kind == SecRequestKind::search && dictionary->objectForKey(kSecMatchLimit))
    request.limit = readLimit(reader);
  secRequire(reader.hasReadAll(), errSecParam);
  return request;
}

NSRefPtr<NSDictionary> secMakeResponse(const SecItemRequest& request, const SecEntry& entry) {
  if (!request.returnAttributes && !request.returnData) return nullptr;
  const NSRef<NSMutableDictionary> response = NSMutableDictionary::dictionary();
  if (request.returnAttributes) addAttributes(entry.attributes, *response);
  if (request.returnData)
    response->setObject(NSData::dataWithBytes(entry.secret.bytes(), true), kSecValueData);
  return response;
}
