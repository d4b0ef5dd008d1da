#include <VXFoundation/VXKeychainItem.h>

#include <algorithm>
#include <iterator>

#include <Foundation/NSException.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSNumber.h>
#include <Security/SecItem.h>
#include <VXFoundation/VXAssertion.h>
#include <VXFoundation/VXFoundationConstants.h>
#include <VXFoundation/VXLocalizedString.h>

namespace {

struct Explanation {
  std::int64_t code;
  Text key;
};

Explanation explain(OSStatus status) {
  switch (status) {
    case errSecItemNotFound:
      return {-201, "A keychain item matching the attributes could not be found in the keychain"};
    case errSecDuplicateItem:
      return {-200, "The keychain item could not be added because it is a duplicate"};
    default:
      return {-200, "There was an unknown error while accessing your keychain"};
  }
}

Ref<NSError> underlyingError(OSStatus status) {
  const Ref<NSString> message = SecCopyErrorMessageString(status);
  return NSError::errorWithDomain(NSOSStatusErrorDomain, status,
                                  NSDictionary::dictionaryWithObject(message, NSLocalizedDescriptionKey));
}

bool _VXKeychainItemCheckStatus(OSStatus status, RefPtr<NSError>* error) {
  if (status == errSecSuccess) return true;
  if (!error) return false;
  NSLog("_VXKeychainItemCheckStatus Error: %d", status);
  const Explanation explanation = explain(status);
  const Ref<NSError> underlying = underlyingError(status);
  const RefPtr<NSString> description = VXLocalizedString(explanation.key);
  *error = NSError::errorWithDomain(
      VXFoundationBundleIdentifier, explanation.code,
      NSDictionary::dictionaryWithObjectsAndKeys(
          {{description, NSLocalizedDescriptionKey}, {underlying, NSUnderlyingErrorKey}}));
  return false;
}

Ref<NSError> _VXKeychainItemInvalidAttributesError() {
  const RefPtr<NSString> description = VXLocalizedString("The keychain attributes are invalid");
  return NSError::errorWithDomain(VXFoundationBundleIdentifier, 0,
                                  NSDictionary::dictionaryWithObject(description, NSLocalizedDescriptionKey));
}

bool reportInvalidAttributes(RefPtr<NSError>* error) {
  if (error) *error = _VXKeychainItemInvalidAttributesError();
  return false;
}

void assertPresent(bool present, const NSObject& receiver, Text selector, std::size_t line, Text condition) {
  VXAssertParameter(present, receiver, {selector, "VXKeychainItem", line, condition});
}

template <class Value>
RefPtr<Value> fixedCopy(const RefPtr<Value>& value) {
  return value ? RefPtr<Value>(value->copy()) : nullptr;
}
RefPtr<NSString> fixedCopy(Text text) { return fixedCopy(text.get()); }

bool equalOrBothAbsent(const RefPtr<NSObject>& own, const RefPtr<NSObject>& other) {
  return own ? other && own->isEqual(other) : !other;
}

/// The value as one of class Kind; absent as well when the map is.
template <class Kind>
RefPtr<Kind> valueIn(const RefPtr<NSDictionary>& map, const Ref<NSString>& key) {
  return map ? dynamicCast<Kind>(map->objectForKey(key)) : nullptr;
}

template <class Kind>
bool hasContent(const RefPtr<NSDictionary>& map, const Ref<NSString>& key) {
  const auto value = valueIn<Kind>(map, key);
  return value && value->length() > 0;
}

void setIfPresent(NSMutableDictionary& map, Object value, const Ref<NSString>& key) {
  if (value) map.setObject(value, key);
}

RefPtr<NSData> secretFromPassword(Text password) {
  if (!password) return nullptr;
  const RefPtr<NSData> secret = password.borrow()->dataUsingEncoding(NSUTF8StringEncoding);
  if (secret) secret->setHoldsSecret(true);
  return secret;
}

RefPtr<NSString> passwordFromSecret(const RefPtr<NSData>& secret) {
  return secret ? NSString::stringWithData(secret, NSUTF8StringEncoding) : nullptr;
}

}  // namespace

// VXKeychainItem

bool VXKeychainItem::initWithUsernameData(Text username, const RefPtr<NSData>& data, Text label) {
  setLabel(label);
  setUsername(username);
  setData(data);
  return true;
}

bool VXKeychainItem::isEqual(const RefPtr<NSObject>& other) const {
  if (!other || !other->isKindOfClass(isa())) return false;
  const auto& item = static_cast<const VXKeychainItem&>(*other);
  return equalOrBothAbsent(label_, item.label_) && equalOrBothAbsent(username_, item.username_) &&
         equalOrBothAbsent(data_, item.data_);
}

bool VXKeychainItem::dictHasVaildKeychainData(const RefPtr<NSDictionary>& map) const {
  return hasContent<NSString>(map, kSecAttrAccount) && hasContent<NSData>(map, kSecValueData);
}

Ref<NSMutableDictionary> VXKeychainItem::_createAttributesDictionary() const {
  const Ref<NSMutableDictionary> attributes = NSMutableDictionary::dictionary();
  setIfPresent(*attributes, username_, kSecAttrAccount);
  setIfPresent(*attributes, data_, kSecValueData);
  setIfPresent(*attributes, label_, kSecAttrLabel);
  return attributes;
}

void VXKeychainItem::populateKeychainItemWithKeychainResponse(const RefPtr<NSDictionary>& response) {
  setKeychainItemResponse(response);
  setLabel(valueIn<NSString>(response, kSecAttrLabel));
  setUsername(valueIn<NSString>(response, kSecAttrAccount));
  if (const auto secret = valueIn<NSData>(response, kSecValueData)) setData(secret);
}

RefPtr<NSMutableDictionary> VXKeychainItem::validAttributes(RefPtr<NSError>* error) const {
  const Ref<NSMutableDictionary> attributes = _createAttributesDictionary();
  if (dictHasVaildKeychainData(attributes)) return attributes;
  reportInvalidAttributes(error);
  return nullptr;
}

bool VXKeychainItem::addItemToKeychain(RefPtr<NSError>* error) {
  const auto attributes = validAttributes(error);
  if (!attributes) return false;
  attributes->setObject(NSNumber::numberWithBool(true), kSecReturnAttributes);
  RefPtr<NSDictionary> response;
  if (!_VXKeychainItemCheckStatus(SecItemAdd(attributes, &response), error)) return false;
  setKeychainItemRequest(attributes);
  populateKeychainItemWithKeychainResponse(response);
  return true;
}

bool VXKeychainItem::refreshItemFromKeychainIncludeData(bool includeData, RefPtr<NSError>* error) {
  assertPresent(bool(keychainItemRequest_), *this, "refreshItemFromKeychainIncludeData:error:", 174,
                "self.keychainItemRequest != NULL");
  RefPtr<NSMutableDictionary> query;
  if (keychainItemRequest_) {
    query = keychainItemRequest_->mutableCopy();
    query->setObject(NSNumber::numberWithBool(true), kSecReturnAttributes);
    if (includeData) query->setObject(NSNumber::numberWithBool(true), kSecReturnData);
  }
  RefPtr<NSDictionary> response;
  if (!_VXKeychainItemCheckStatus(SecItemCopyMatching(query, &response), error)) return false;
  if (includeData && !dictHasVaildKeychainData(response)) return reportInvalidAttributes(error);
  populateKeychainItemWithKeychainResponse(response);
  return true;
}

bool VXKeychainItem::updateItemInKeychain(RefPtr<NSError>* error) {
  assertPresent(bool(keychainItemResponse_), *this, "updateItemInKeychain:", 210,
                "self.keychainItemResponse != nil");
  assertPresent(bool(keychainItemRequest_), *this, "updateItemInKeychain:", 211,
                "self.keychainItemRequest != nil");
  const auto attributes = validAttributes(error);
  if (!attributes) return false;
  return _VXKeychainItemCheckStatus(SecItemUpdate(keychainItemRequest_, attributes), error);
}

bool VXKeychainItem::deleteItemFromKeychain(RefPtr<NSError>* error) {
  const auto attributes = validAttributes(error);
  if (!attributes) return false;
  const OSStatus status = SecItemDelete(attributes);
  const bool deleted = _VXKeychainItemCheckStatus(status, error);
  return deleted || status == errSecItemNotFound;
}

void VXKeychainItem::setLabel(Text label) { label_ = fixedCopy(label); }
void VXKeychainItem::setUsername(Text username) { username_ = fixedCopy(username); }
void VXKeychainItem::setData(const RefPtr<NSData>& data) { data_ = fixedCopy(data); }

// VXPasswordKeychainItem

bool VXPasswordKeychainItem::initWithUsername(Text username, Text password, Text label) {
  return initWithUsernameData(username, secretFromPassword(password), label);
}

RefPtr<NSString> VXPasswordKeychainItem::password() const { return passwordFromSecret(data()); }
void VXPasswordKeychainItem::setPassword(Text password) { setData(secretFromPassword(password)); }

bool VXPasswordKeychainItem::refreshItemFromKeychainIncludePassword(bool includePassword,
                                                                    RefPtr<NSError>* error) {
  return refreshItemFromKeychainIncludeData(includePassword, error);
}

bool VXPasswordKeychainItem::dictHasVaildKeychainData(const RefPtr<NSDictionary>& map) const {
  if (!VXKeychainItem::dictHasVaildKeychainData(map)) return false;
  const auto password = passwordFromSecret(valueIn<NSData>(map, kSecValueData));
  return password && password->length() > 0;
}

// VXGenericKeychainItem

bool VXGenericKeychainItem::initWithUsername(Text username, Text password, Text label, Text serviceName) {
  if (!initWithUsername(username, password, label)) return false;
  setServiceName(serviceName);
  return true;
}

bool VXGenericKeychainItem::isEqual(const RefPtr<NSObject>& other) const {
  return VXPasswordKeychainItem::isEqual(other) &&
         equalOrBothAbsent(serviceName_, static_cast<const VXGenericKeychainItem&>(*other).serviceName_);
}

bool VXGenericKeychainItem::dictHasVaildKeychainData(const RefPtr<NSDictionary>& map) const {
  return VXPasswordKeychainItem::dictHasVaildKeychainData(map) && hasContent<NSString>(map, kSecAttrService);
}

Ref<NSMutableDictionary> VXGenericKeychainItem::_createAttributesDictionary() const {
  const auto attributes = VXPasswordKeychainItem::_createAttributesDictionary();
  attributes->setObject(kSecClassGenericPassword, kSecClass);
  setIfPresent(*attributes, serviceName_, kSecAttrService);
  return attributes;
}

void VXGenericKeychainItem::populateKeychainItemWithKeychainResponse(const RefPtr<NSDictionary>& response) {
  VXPasswordKeychainItem::populateKeychainItemWithKeychainResponse(response);
  setServiceName(valueIn<NSString>(response, kSecAttrService));
}

void VXGenericKeychainItem::setServiceName(Text serviceName) { serviceName_ = fixedCopy(serviceName); }

Ref<NSMutableDictionary> VXGenericKeychainItem::queryDictionaryWithUsername(Text username, Text serviceName) {
  const Ref<NSMutableDictionary> query = NSMutableDictionary::dictionary();
  query->setObject(kSecClassGenericPassword, kSecClass);
  setIfPresent(*query, username.get(), kSecAttrAccount);
  setIfPresent(*query, serviceName.get(), kSecAttrService);
  return query;
}

void VXGenericKeychainItem::assertFindable(const Class& receiver, Text username, Text serviceName) {
  const Text selector = "findKeychainItemForUsername:serviceName:";
  assertPresent(bool(username), receiver, selector, 315, "username != nil");
  assertPresent(bool(serviceName), receiver, selector, 316, "serviceName != nil");
}

// VXInternetKeychainItem

namespace {

const Ref<NSString>* const protocolTypes[] = {&kSecAttrProtocolHTTP, &kSecAttrProtocolHTTPS,
                                              &kSecAttrProtocolFTP, &kSecAttrProtocolSSH};

const Ref<NSString>& _VXInternetKeychainItemTypeFromProtocol(VXInternetKeychainItemProtocol protocol) {
  const auto value = static_cast<std::uint64_t>(protocol);
  if (value - 1 >= std::size(protocolTypes))
    NSException::raise(NSInvalidArgumentException, "unknown protocol %lu", value);
  return *protocolTypes[value - 1];
}

void setProtocolIfAny(NSMutableDictionary& map, VXInternetKeychainItemProtocol protocol) {
  if (protocol == VXInternetKeychainItemProtocolNone) return;
  map.setObject(_VXInternetKeychainItemTypeFromProtocol(protocol), kSecAttrProtocol);
}

void setPort(NSMutableDictionary& map, std::int64_t port) {
  map.setObject(NSNumber::numberWithInteger(port), kSecAttrPort);
}

}  // namespace

bool VXInternetKeychainItem::initWithUsername(Text username, Text password, Text label, Text server,
                                              Text path, std::int64_t port,
                                              VXInternetKeychainItemProtocol protocol) {
  if (!initWithUsername(username, password, label)) return false;
  setServer(server);
  setPath(path);
  setPort(port);
  setProtocol(protocol);
  return true;
}

bool VXInternetKeychainItem::isEqual(const RefPtr<NSObject>& other) const {
  if (!VXPasswordKeychainItem::isEqual(other)) return false;
  const auto& item = static_cast<const VXInternetKeychainItem&>(*other);
  return protocol_ == item.protocol_ && equalOrBothAbsent(server_, item.server_) && port_ == item.port_ &&
         equalOrBothAbsent(path_, item.path_);
}

bool VXInternetKeychainItem::dictHasVaildKeychainData(const RefPtr<NSDictionary>& map) const {
  return VXPasswordKeychainItem::dictHasVaildKeychainData(map) && hasContent<NSString>(map, kSecAttrServer);
}

Ref<NSMutableDictionary> VXInternetKeychainItem::_createAttributesDictionary() const {
  const auto attributes = VXPasswordKeychainItem::_createAttributesDictionary();
  attributes->setObject(kSecClassInternetPassword, kSecClass);
  setProtocolIfAny(*attributes, protocol_);
  setIfPresent(*attributes, server_, kSecAttrServer);
  if (port_ != 0) ::setPort(*attributes, port_);
  setIfPresent(*attributes, path_, kSecAttrPath);
  return attributes;
}

void VXInternetKeychainItem::populateKeychainItemWithKeychainResponse(const RefPtr<NSDictionary>& response) {
  VXPasswordKeychainItem::populateKeychainItemWithKeychainResponse(response);
  if (const auto type = valueIn<NSString>(response, kSecAttrProtocol))
    setProtocol(_VXInternetKeychainItemProtocolFromType(type));
  setServer(valueIn<NSString>(response, kSecAttrServer));
  const auto port = valueIn<NSNumber>(response, kSecAttrPort);
  setPort(port ? port->integerValue() : 0);
  setPath(valueIn<NSString>(response, kSecAttrPath));
}

VXInternetKeychainItemProtocol VXInternetKeychainItem::_VXInternetKeychainItemProtocolFromType(
    Text type) const {
  const auto found =
      std::find_if(std::begin(protocolTypes), std::end(protocolTypes),
                   [&](const Ref<NSString>* known) { return (*known)->isEqualToString(type); });
  if (found == std::end(protocolTypes)) return VXInternetKeychainItemProtocolNone;
  return static_cast<VXInternetKeychainItemProtocol>(found - std::begin(protocolTypes) + 1);
}

void VXInternetKeychainItem::setServer(Text server) { server_ = fixedCopy(server); }
void VXInternetKeychainItem::setPath(Text path) { path_ = fixedCopy(path); }

Ref<NSMutableDictionary> VXInternetKeychainItem::queryDictionaryWithUsername(
    Text username, Text server, Text path, std::int64_t port, VXInternetKeychainItemProtocol protocol) {
  const Ref<NSMutableDictionary> query = NSMutableDictionary::dictionary();
  query->setObject(kSecClassInternetPassword, kSecClass);
  setIfPresent(*query, username.get(), kSecAttrAccount);
  setIfPresent(*query, server.get(), kSecAttrServer);
  if (port > 0) ::setPort(*query, port);
  setIfPresent(*query, path.get(), kSecAttrPath);
  setProtocolIfAny(*query, protocol);
  return query;
}

void VXInternetKeychainItem::assertFindable(const Class& receiver, Text username, Text server) {
  const Text selector = "findKeychainItemForUsername:server:path:port:protocol:";
  assertPresent(bool(username), receiver, selector, 421, "username != nil");
  assertPresent(bool(server), receiver, selector, 422, "server != nil");
}
