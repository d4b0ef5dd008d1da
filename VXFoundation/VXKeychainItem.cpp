#include <VXFoundation/VXKeychainItem.h>

#include <algorithm>
#include <span>

#include <Foundation/NSException.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSNumber.h>
#include <Security/SecItem.h>
#include <VXFoundation/Internal/VXAssertion.h>
#include <VXFoundation/Internal/VXLocalizedString.h>
#include <VXFoundation/VXFoundationConstants.h>

namespace {

struct Explanation {
  std::int64_t code;
  NSStringArg key;
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

NSRef<NSError> underlyingError(OSStatus status) {
  const NSRef<NSString> message = SecCopyErrorMessageString(status);
  return NSError::errorWithDomain(NSOSStatusErrorDomain, status,
                                  NSDictionary::dictionaryWithObject(message, NSLocalizedDescriptionKey));
}

bool _VXKeychainItemCheckStatus(OSStatus status, NSRefPtr<NSError>* error) {
  if (status == errSecSuccess) return true;
  if (!error) return false;
  NSLog("_VXKeychainItemCheckStatus Error: %d", status);
  const Explanation explanation = explain(status);
  const NSRef<NSError> underlying = underlyingError(status);
  const NSRefPtr<NSString> description = VXLocalizedString(explanation.key);
  *error = NSError::errorWithDomain(
      VXFoundationBundleIdentifier, explanation.code,
      NSDictionary::dictionaryWithObjectsAndKeys(
          {{description, NSLocalizedDescriptionKey}, {underlying, NSUnderlyingErrorKey}}));
  return false;
}

NSRef<NSError> _VXKeychainItemInvalidAttributesError() {
  const NSRefPtr<NSString> description = VXLocalizedString("The keychain attributes are invalid");
  return NSError::errorWithDomain(VXFoundationBundleIdentifier, 0,
                                  NSDictionary::dictionaryWithObject(description, NSLocalizedDescriptionKey));
}

bool reportInvalidAttributes(NSRefPtr<NSError>* error) {
  if (error) *error = _VXKeychainItemInvalidAttributesError();
  return false;
}

void assertNotNil(bool holds, const NSObject& receiver, NSStringArg selector, std::size_t line,
                  NSStringArg condition) {
  VXAssertParameter(holds, receiver, {selector, "VXKeychainItem", line, condition});
}

template <class Value>
NSRefPtr<Value> immutableCopy(const NSRefPtr<Value>& value) {
  return value ? NSRefPtr<Value>(value->copy()) : nullptr;
}
NSRefPtr<NSString> immutableCopy(NSStringArg string, const char* operation = __builtin_FUNCTION()) {
  return immutableCopy(string.get(operation));
}

bool equalOrBothNil(const NSRefPtr<NSObject>& own, const NSRefPtr<NSObject>& other) {
  return own ? other && own->isEqual(other) : !other;
}

/// Returns the value if it is a Kind; nil otherwise, and if the dictionary is nil.
template <class Kind>
NSRefPtr<Kind> valueIn(const NSRefPtr<NSDictionary>& dictionary, const NSRef<NSString>& key) {
  return dictionary ? NSDynamicCast<Kind>(dictionary->objectForKey(key)) : nullptr;
}

template <class Kind>
bool hasContent(const NSRefPtr<NSDictionary>& dictionary, const NSRef<NSString>& key) {
  const auto value = valueIn<Kind>(dictionary, key);
  return value && value->length() > 0;
}

void setIfNotNil(NSMutableDictionary& dictionary, NSObjectArg value, const NSRef<NSString>& key) {
  if (value) dictionary.setObject(value, key);
}

/// A request that finds the entry of a response and no other.
NSRef<NSDictionary> exactRequest(const NSDictionary& response) {
  const NSRef<NSMutableDictionary> request = response.mutableCopy();
  request->removeObjectForKey(kSecAttrLabel);
  request->removeObjectForKey(kSecValueData);
  request->setObject(NSNumber::numberWithBool(true), kSecMatchExactly);
  return request;
}

NSRefPtr<NSData> secretFromPassword(NSStringArg password, const char* operation = __builtin_FUNCTION()) {
  const NSRefPtr<NSString> string = password.get(operation);
  if (!string) return nullptr;
  if (password.isUTF8()) string->setHoldsSecret(true);  // of another string that is the host's to say
  const NSRefPtr<NSData> secret = string->dataUsingEncoding(NSUTF8StringEncoding);
  if (secret) secret->setHoldsSecret(true);
  return secret;
}

NSRefPtr<NSString> passwordFromSecret(const NSRefPtr<NSData>& secret) {
  return secret ? NSString::stringWithData(secret, NSUTF8StringEncoding) : nullptr;
}

}  // namespace

// VXKeychainItem

bool VXKeychainItem::initWithUsernameData(NSStringArg username, const NSRefPtr<NSData>& data,
                                          NSStringArg label) {
  setLabel(label);
  setUsername(username);
  setData(data);
  return true;
}

bool VXKeychainItem::isEqual(const NSRefPtr<NSObject>& other) const {
  if (!other || !other->isKindOfClass(isa())) return false;
  const auto& item = static_cast<const VXKeychainItem&>(*other);
  return equalOrBothNil(label_, item.label_) && equalOrBothNil(username_, item.username_) &&
         equalOrBothNil(data_, item.data_);
}

bool VXKeychainItem::dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const {
  return hasContent<NSString>(dictionary, kSecAttrAccount) && hasContent<NSData>(dictionary, kSecValueData);
}

NSRef<NSMutableDictionary> VXKeychainItem::_createAttributesDictionary() const {
  const NSRef<NSMutableDictionary> attributes = NSMutableDictionary::dictionary();
  setIfNotNil(*attributes, username_, kSecAttrAccount);
  setIfNotNil(*attributes, data_, kSecValueData);
  setIfNotNil(*attributes, label_, kSecAttrLabel);
  return attributes;
}

void VXKeychainItem::populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response) {
  setKeychainItemResponse(response);
  setLabel(valueIn<NSString>(response, kSecAttrLabel));
  setUsername(valueIn<NSString>(response, kSecAttrAccount));
  if (const auto secret = valueIn<NSData>(response, kSecValueData)) setData(secret);
}

NSRefPtr<NSMutableDictionary> VXKeychainItem::validAttributes(NSRefPtr<NSError>* error) const {
  const NSRef<NSMutableDictionary> attributes = _createAttributesDictionary();
  if (dictHasVaildKeychainData(attributes)) return attributes;
  reportInvalidAttributes(error);
  return nullptr;
}

bool VXKeychainItem::addItemToKeychain(NSRefPtr<NSError>* error) {
  const auto attributes = validAttributes(error);
  if (!attributes) return false;
  attributes->setObject(NSNumber::numberWithBool(true), kSecReturnAttributes);
  NSRefPtr<NSDictionary> response;
  if (!_VXKeychainItemCheckStatus(SecItemAdd(attributes, &response), error)) return false;
  setKeychainItemRequest(attributes);
  populateKeychainItemWithKeychainResponse(response);
  return true;
}

bool VXKeychainItem::refreshItemFromKeychainIncludeData(bool includeData, NSRefPtr<NSError>* error) {
  assertNotNil(bool(keychainItemRequest_), *this, "refreshItemFromKeychainIncludeData:error:", 174,
               "self.keychainItemRequest != NULL");
  NSRefPtr<NSMutableDictionary> query;
  if (keychainItemRequest_) {
    query = keychainItemRequest_->mutableCopy();
    query->setObject(NSNumber::numberWithBool(true), kSecReturnAttributes);
    if (includeData) query->setObject(NSNumber::numberWithBool(true), kSecReturnData);
  }
  NSRefPtr<NSDictionary> response;
  if (!_VXKeychainItemCheckStatus(SecItemCopyMatching(query, &response), error)) return false;
  if (includeData && !dictHasVaildKeychainData(response)) return reportInvalidAttributes(error);
  populateKeychainItemWithKeychainResponse(response);
  return true;
}

bool VXKeychainItem::updateItemInKeychain(NSRefPtr<NSError>* error) {
  assertNotNil(bool(keychainItemResponse_), *this, "updateItemInKeychain:", 210,
               "self.keychainItemResponse != nil");
  assertNotNil(bool(keychainItemRequest_), *this, "updateItemInKeychain:", 211,
               "self.keychainItemRequest != nil");
  const auto attributes = validAttributes(error);
  if (!attributes) return false;
  return _VXKeychainItemCheckStatus(SecItemUpdate(keychainItemRequest_, attributes), error);
}

bool VXKeychainItem::deleteItemFromKeychain(NSRefPtr<NSError>* error) {
  const auto attributes = validAttributes(error);
  if (!attributes) return false;
  const OSStatus status = SecItemDelete(attributes);
  const bool deleted = _VXKeychainItemCheckStatus(status, error);
  return deleted || status == errSecItemNotFound;
}

NSRef<NSDictionary> VXKeychainItem::requiredResponse(NSStringArg operation) const {
  if (!keychainItemResponse_)
    NSException::raise(NSInvalidArgumentException, "%@: the item has no response", operation.get());
  return keychainItemResponse_;
}

/// As validAttributes, for an item that need not have loaded its secret.
NSRefPtr<NSMutableDictionary> VXKeychainItem::validChanges(NSRefPtr<NSError>* error) const {
  if (data_) return validAttributes(error);
  const NSRef<NSMutableDictionary> changes = _createAttributesDictionary();
  const NSRef<NSMutableDictionary> withSecret = changes->mutableCopy();
  withSecret->setObject(NSData::dataWithBytes("x", 1), kSecValueData);
  if (dictHasVaildKeychainData(withSecret)) return changes;
  reportInvalidAttributes(error);
  return nullptr;
}

bool VXKeychainItem::updateAndFollow(NSRefPtr<NSError>* error) {
  const NSRef<NSDictionary> response = requiredResponse("updateAndFollow");
  const auto changes = validChanges(error);
  if (!changes) return false;
  if (!_VXKeychainItemCheckStatus(SecItemUpdate(exactRequest(*response), changes), error)) return false;
  const NSRef<NSMutableDictionary> changed = response->mutableCopy();
  changes->enumerateKeysAndObjectsUsingBlock([&](const NSRef<NSObject>& key, const NSRef<NSObject>& value,
                                                 bool*) { changed->setObject(value, key); });
  const NSRef<NSDictionary> request = exactRequest(*changed);
  const NSRef<NSMutableDictionary> query = request->mutableCopy();
  query->setObject(NSNumber::numberWithBool(true), kSecReturnAttributes);
  NSRefPtr<NSDictionary> entry;
  if (!_VXKeychainItemCheckStatus(SecItemCopyMatching(query, &entry), error)) return false;
  setKeychainItemRequest(request);
  populateKeychainItemWithKeychainResponse(entry);
  return true;
}

bool VXKeychainItem::deleteFoundItem(NSRefPtr<NSError>* error) {
  const OSStatus status = SecItemDelete(exactRequest(*requiredResponse("deleteFoundItem")));
  const bool deleted = _VXKeychainItemCheckStatus(status, error);
  return deleted || status == errSecItemNotFound;
}

NSRefPtr<NSArray> VXKeychainItem::itemsMatching(const NSRef<NSMutableDictionary>& query, bool includeData,
                                                NSFunctionRef<NSRefPtr<VXKeychainItem>()> makeItem,
                                                NSRefPtr<NSError>* error) {
  const NSRef<NSNumber> yes = NSNumber::numberWithBool(true);
  query->setObject(kSecMatchLimitAll, kSecMatchLimit);
  query->setObject(yes, kSecReturnAttributes);
  if (includeData) query->setObject(yes, kSecReturnData);
  NSRefPtr<NSArray> responses;
  const OSStatus status = SecItemCopyMatching(query, &responses);
  if (status == errSecItemNotFound) return NSArray::array();
  if (!_VXKeychainItemCheckStatus(status, error)) return nullptr;
  const NSRef<NSMutableArray> items = NSMutableArray::arrayWithCapacity(responses->count());
  for (const NSRef<NSObject> each : *responses) {
    const NSRef<NSDictionary> response = NSDynamicCast<NSDictionary>(each);
    const NSRef<VXKeychainItem> item = makeItem();
    item->setKeychainItemRequest(exactRequest(*response));
    item->populateKeychainItemWithKeychainResponse(response);
    items->addObject(item);
  }
  return items;
}

void VXKeychainItem::setLabel(NSStringArg label) { label_ = immutableCopy(label); }
void VXKeychainItem::setUsername(NSStringArg username) { username_ = immutableCopy(username); }
void VXKeychainItem::setData(const NSRefPtr<NSData>& data) { data_ = immutableCopy(data); }

// VXPasswordKeychainItem

bool VXPasswordKeychainItem::initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label) {
  return initWithUsernameData(username, secretFromPassword(password), label);
}

NSRefPtr<NSString> VXPasswordKeychainItem::password() const { return passwordFromSecret(data()); }
void VXPasswordKeychainItem::setPassword(NSStringArg password) { setData(secretFromPassword(password)); }

bool VXPasswordKeychainItem::refreshItemFromKeychainIncludePassword(bool includePassword,
                                                                    NSRefPtr<NSError>* error) {
  return refreshItemFromKeychainIncludeData(includePassword, error);
}

bool VXPasswordKeychainItem::dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const {
  if (!VXKeychainItem::dictHasVaildKeychainData(dictionary)) return false;
  const auto password = passwordFromSecret(valueIn<NSData>(dictionary, kSecValueData));
  return password && password->length() > 0;
}

// VXGenericKeychainItem

bool VXGenericKeychainItem::initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label,
                                             NSStringArg serviceName) {
  if (!initWithUsername(username, password, label)) return false;
  setServiceName(serviceName);
  return true;
}

bool VXGenericKeychainItem::isEqual(const NSRefPtr<NSObject>& other) const {
  return VXPasswordKeychainItem::isEqual(other) &&
         equalOrBothNil(serviceName_, static_cast<const VXGenericKeychainItem&>(*other).serviceName_);
}

bool VXGenericKeychainItem::dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const {
  return VXPasswordKeychainItem::dictHasVaildKeychainData(dictionary) &&
         hasContent<NSString>(dictionary, kSecAttrService);
}

NSRef<NSMutableDictionary> VXGenericKeychainItem::_createAttributesDictionary() const {
  const auto attributes = VXPasswordKeychainItem::_createAttributesDictionary();
  attributes->setObject(kSecClassGenericPassword, kSecClass);
  setIfNotNil(*attributes, serviceName_, kSecAttrService);
  return attributes;
}

void VXGenericKeychainItem::populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response) {
  VXPasswordKeychainItem::populateKeychainItemWithKeychainResponse(response);
  setServiceName(valueIn<NSString>(response, kSecAttrService));
}

void VXGenericKeychainItem::setServiceName(NSStringArg serviceName) {
  serviceName_ = immutableCopy(serviceName);
}

NSRef<NSMutableDictionary> VXGenericKeychainItem::queryDictionaryWithUsername(NSStringArg username,
                                                                              NSStringArg serviceName) {
  const NSRef<NSMutableDictionary> query = NSMutableDictionary::dictionary();
  query->setObject(kSecClassGenericPassword, kSecClass);
  setIfNotNil(*query, username.get(), kSecAttrAccount);
  setIfNotNil(*query, serviceName.get(), kSecAttrService);
  return query;
}

void VXGenericKeychainItem::assertFindable(const NSClass& receiver, NSStringArg username,
                                           NSStringArg serviceName) {
  const NSStringArg selector = "findKeychainItemForUsername:serviceName:";
  assertNotNil(bool(username), receiver, selector, 315, "username != nil");
  assertNotNil(bool(serviceName), receiver, selector, 316, "serviceName != nil");
}

// VXInternetKeychainItem

namespace {

// In the order of the enumeration. Made at its first use: when this file is initialised, the constants may
// not exist yet.
std::span<const NSRef<NSString>* const> protocolTypes() {
  static const NSRef<NSString>* const types[] = {&kSecAttrProtocolHTTP, &kSecAttrProtocolHTTPS,
                                                 &kSecAttrProtocolFTP, &kSecAttrProtocolSSH};
  return types;
}

const NSRef<NSString>& _VXInternetKeychainItemTypeFromProtocol(VXInternetKeychainItemProtocol protocol) {
  const auto value = static_cast<std::uint64_t>(protocol);
  if (value - 1 >= protocolTypes().size())
    NSException::raise(NSInvalidArgumentException, "unknown protocol %lu", value);
  return *protocolTypes()[value - 1];
}

void setProtocolIfAny(NSMutableDictionary& dictionary, VXInternetKeychainItemProtocol protocol) {
  if (protocol == VXInternetKeychainItemProtocolNone) return;
  dictionary.setObject(_VXInternetKeychainItemTypeFromProtocol(protocol), kSecAttrProtocol);
}

void setPort(NSMutableDictionary& dictionary, std::int64_t port) {
  dictionary.setObject(NSNumber::numberWithInteger(port), kSecAttrPort);
}

}  // namespace

bool VXInternetKeychainItem::initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label,
                                              NSStringArg server, NSStringArg path, std::int64_t port,
                                              VXInternetKeychainItemProtocol protocol) {
  if (!VXPasswordKeychainItem::initWithUsername(username, password, label)) return false;
  setServer(server);
  setPath(path);
  setPort(port);
  setProtocol(protocol);
  return true;
}

bool VXInternetKeychainItem::isEqual(const NSRefPtr<NSObject>& other) const {
  if (!VXPasswordKeychainItem::isEqual(other)) return false;
  const auto& item = static_cast<const VXInternetKeychainItem&>(*other);
  return protocol_ == item.protocol_ && equalOrBothNil(server_, item.server_) && port_ == item.port_ &&
         equalOrBothNil(path_, item.path_);
}

bool VXInternetKeychainItem::dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const {
  return VXPasswordKeychainItem::dictHasVaildKeychainData(dictionary) &&
         hasContent<NSString>(dictionary, kSecAttrServer);
}

NSRef<NSMutableDictionary> VXInternetKeychainItem::_createAttributesDictionary() const {
  const auto attributes = VXPasswordKeychainItem::_createAttributesDictionary();
  attributes->setObject(kSecClassInternetPassword, kSecClass);
  setProtocolIfAny(*attributes, protocol_);
  setIfNotNil(*attributes, server_, kSecAttrServer);
  if (port_ != 0) ::setPort(*attributes, port_);
  setIfNotNil(*attributes, path_, kSecAttrPath);
  return attributes;
}

void VXInternetKeychainItem::populateKeychainItemWithKeychainResponse(
    const NSRefPtr<NSDictionary>& response) {
  VXPasswordKeychainItem::populateKeychainItemWithKeychainResponse(response);
  if (const auto type = valueIn<NSString>(response, kSecAttrProtocol))
    setProtocol(_VXInternetKeychainItemProtocolFromType(type));
  setServer(valueIn<NSString>(response, kSecAttrServer));
  const auto port = valueIn<NSNumber>(response, kSecAttrPort);
  setPort(port ? port->integerValue() : 0);
  setPath(valueIn<NSString>(response, kSecAttrPath));
}

VXInternetKeychainItemProtocol VXInternetKeychainItem::_VXInternetKeychainItemProtocolFromType(
    NSStringArg type) const {
  const auto types = protocolTypes();
  const auto found = std::find_if(types.begin(), types.end(), [&](const NSRef<NSString>* known) {
    return (*known)->isEqualToString(type);
  });
  if (found == types.end()) return VXInternetKeychainItemProtocolNone;
  return static_cast<VXInternetKeychainItemProtocol>(found - types.begin() + 1);
}

void VXInternetKeychainItem::setServer(NSStringArg server) { server_ = immutableCopy(server); }
void VXInternetKeychainItem::setPath(NSStringArg path) { path_ = immutableCopy(path); }

NSRef<NSMutableDictionary> VXInternetKeychainItem::queryDictionaryWithUsername(
    NSStringArg username, NSStringArg server, NSStringArg path, std::int64_t port,
    VXInternetKeychainItemProtocol protocol) {
  const NSRef<NSMutableDictionary> query = NSMutableDictionary::dictionary();
  query->setObject(kSecClassInternetPassword, kSecClass);
  setIfNotNil(*query, username.get(), kSecAttrAccount);
  setIfNotNil(*query, server.get(), kSecAttrServer);
  if (port > 0) ::setPort(*query, port);
  setIfNotNil(*query, path.get(), kSecAttrPath);
  setProtocolIfAny(*query, protocol);
  return query;
}

void VXInternetKeychainItem::assertFindable(const NSClass& receiver, NSStringArg username,
                                            NSStringArg server) {
  const NSStringArg selector = "findKeychainItemForUsername:server:path:port:protocol:";
  assertNotNil(bool(username), receiver, selector, 421, "username != nil");
  assertNotNil(bool(server), receiver, selector, 422, "server != nil");
}
