#pragma once

#include <cstdint>
#include <utility>

#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSString.h>

/// @file
/// Items of the credential store. An operation answers whether it was done. Where it was not and a place for
/// an error was given, that gets an error of the domain VXFoundationBundleIdentifier: code 0 for incomplete
/// attributes (no store is asked), -201 for an entry that was not found, -200 for any other status, each with
/// a localised description and, but for code 0, the platform's error underneath. The item is then as it was.

/// One entry of the process's credential store: account, secret and label, with the request that identifies
/// it there and the last answer about it. Kinds of entries are subclasses; this class has the sequence of
/// steps of each operation and leaves to them isEqual and the three operations after it, of which each
/// override calls its base class's first. An item is for one thread at a time. Its maps hold the secret as
/// long as it does.
class NS_EXPORT VXKeychainItem : public NSObject::Subclass<VXKeychainItem> {
 public:
  /// initWithUsername:data:label:. Nothing is checked; texts and bytes are copied.
  virtual bool initWithUsernameData(NSStringArg username, const NSRefPtr<NSData>& data, NSStringArg label);

  /// Whether the other is of the receiver's class or a subclass and has the same label, account and secret;
  /// the maps do not count. One-sided, therefore: an item of a subclass does not equal one of its base class.
  /// The hash stays the one of the identity.
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  /// Whether the map, which may be absent, has an account and a secret that are not empty. The spelling is
  /// part of the interface.
  virtual bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& map) const;
  /// A new map of the fields that are present, under the names in SecConstants.h.
  virtual NSRef<NSMutableDictionary> _createAttributesDictionary() const;
  /// Keeps the very map and takes over its values: one that is absent clears its field, but the secret stays.
  virtual void populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response);

  /// Adds an entry with the item's fields. The map that was asked with, secret included, becomes the request.
  virtual bool addItemToKeychain(NSRefPtr<NSError>* error = nullptr);
  /// Takes over what the store knows of the entry that the request finds; asserts that there is a request.
  /// With data, the answer must have what a valid item has; without, the secret stays what it was. Where the
  /// assertion handler returns, an absent request is the error -200.
  virtual bool refreshItemFromKeychainIncludeData(bool includeData, NSRefPtr<NSError>* error = nullptr);
  /// Changes the entry that the request finds to the item's fields; asserts a response and a request. Both
  /// stay as they are.
  virtual bool updateItemInKeychain(NSRefPtr<NSError>* error = nullptr);
  /// Deletes the entry with the item's fields as they are now. Succeeds where there is none, but gives the
  /// error -201 even so.
  virtual bool deleteItemFromKeychain(NSRefPtr<NSError>* error = nullptr);

  /// The fields, each of which may be absent. Setters copy what they are given; no store is asked.
  ///@{
  const NSRefPtr<NSString>& label() const { return label_; }
  void setLabel(NSStringArg label);
  const NSRefPtr<NSString>& username() const { return username_; }
  void setUsername(NSStringArg username);
  const NSRefPtr<NSData>& data() const { return data_; }
  void setData(const NSRefPtr<NSData>& data);
  ///@}
  /// The map that finds the entry and the last answer about it, each of which may be absent. They are shared,
  /// not copied, and may hold the secret.
  ///@{
  const NSRefPtr<NSDictionary>& keychainItemRequest() const { return keychainItemRequest_; }
  void setKeychainItemRequest(NSRefPtr<NSDictionary> request) { keychainItemRequest_ = std::move(request); }
  const NSRefPtr<NSDictionary>& keychainItemResponse() const { return keychainItemResponse_; }
  void setKeychainItemResponse(NSRefPtr<NSDictionary> response) {
    keychainItemResponse_ = std::move(response);
  }
  ///@}

 private:
  NSRefPtr<NSMutableDictionary> validAttributes(NSRefPtr<NSError>* error) const;

  NSRefPtr<NSString> label_;
  NSRefPtr<NSString> username_;
  NSRefPtr<NSData> data_;
  NSRefPtr<NSDictionary> keychainItemRequest_;
  NSRefPtr<NSDictionary> keychainItemResponse_;
};

/// An item whose secret is a password: the UTF-8 encoding of a text that is not empty.
class NS_EXPORT VXPasswordKeychainItem : public VXKeychainItem::Subclass<VXPasswordKeychainItem> {
 public:
  /// Nothing is checked, and each may be absent; see setPassword.
  virtual bool initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label);

  /// The secret as a new text, marked as a secret when the data is. Absent when there is no secret or it is
  /// not UTF-8.
  NSRefPtr<NSString> password() const;
  /// Keeps the password's UTF-8 (RFC 3629), marked as a secret. An absent text, or one with an unpaired
  /// surrogate, which UTF-8 cannot tell, clears the secret.
  void setPassword(NSStringArg password);

  /// refreshItemFromKeychainIncludeData, for hosts that know the data as a password.
  virtual bool refreshItemFromKeychainIncludePassword(bool includePassword,
                                                      NSRefPtr<NSError>* error = nullptr);

  /// As VXKeychainItem's; the secret must be UTF-8, too.
  bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& map) const override;
};

class VXGenericKeychainItem;

/// The class operations of generic items, which know the class that received them: class MailItem : public
/// VXGenericKeychainItem::Subclass<MailItem> has factories that make a MailItem and ask with its own query.
template <class Self, class Base>
class [[gnu::visibility("default")]] VXGenericKeychainItemLayer : public NSObjectLayer<Self, Base> {
 public:
  /// The base to derive a kind of generic item from.
  template <class Derived>
  using Subclass = VXGenericKeychainItemLayer<Derived, Self>;

  /// A new item of the receiving class with these fields, each of which may be absent; absent itself when its
  /// initialiser says no. No store is asked.
  static NSRefPtr<Self> keychainItemWithUsername(NSStringArg username, NSStringArg password,
                                                 NSStringArg label, NSStringArg serviceName);
  /// An item without fields that holds the receiving class's query as its request, to be refreshed. It is a
  /// VXGenericKeychainItem whichever class is asked. Asserts both arguments; no store is asked.
  static NSRef<VXGenericKeychainItem> findKeychainItemForUsername(NSStringArg username,
                                                                  NSStringArg serviceName);
};

/// A password for an account of a service.
class NS_EXPORT VXGenericKeychainItem
    : public VXGenericKeychainItemLayer<VXGenericKeychainItem, VXPasswordKeychainItem> {
 public:
  using VXPasswordKeychainItem::initWithUsername;
  /// Nothing is checked, and each may be absent; see setPassword.
  virtual bool initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label,
                                NSStringArg serviceName);

  /// As VXPasswordKeychainItem's; the service must be the same, too.
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  /// As VXPasswordKeychainItem's; there must be a service that is not empty, too.
  bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& map) const override;
  /// Writes the class, and the service when there is one, too.
  NSRef<NSMutableDictionary> _createAttributesDictionary() const override;
  /// An answer without a service clears that field.
  void populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response) override;

  /// What the account is of; may be absent. The setter copies.
  ///@{
  const NSRefPtr<NSString>& serviceName() const { return serviceName_; }
  void setServiceName(NSStringArg serviceName);
  ///@}

  /// A new query for the class and the arguments that are present. A subclass may have one of its own, which
  /// its findKeychainItemForUsername then uses.
  static NSRef<NSMutableDictionary> queryDictionaryWithUsername(NSStringArg username,
                                                                NSStringArg serviceName);

 private:
  template <class Self, class Base>
  friend class VXGenericKeychainItemLayer;
  // A class that derives without the layer would quietly make objects of its base; it does not compile, as
  // its destructor would be inaccessible.
  template <class Self, class Base>
  friend class NSObjectLayer;
  template <class Self>
  friend class NSAllocated;
  ~VXGenericKeychainItem() override = default;

  static void assertFindable(const NSClass& receiver, NSStringArg username, NSStringArg serviceName);

  NSRefPtr<NSString> serviceName_;
};

/// What an internet password is for. Other values can be held, but raise the invalid-argument exception
/// where a map is made of them.
enum VXInternetKeychainItemProtocol : std::uint64_t {
  VXInternetKeychainItemProtocolNone,   ///< no kSecAttrProtocol in maps
  VXInternetKeychainItemProtocolHTTP,   ///< kSecAttrProtocolHTTP
  VXInternetKeychainItemProtocolHTTPS,  ///< kSecAttrProtocolHTTPS
  VXInternetKeychainItemProtocolFTP,    ///< kSecAttrProtocolFTP
  VXInternetKeychainItemProtocolSSH,    ///< kSecAttrProtocolSSH
};

/// The class operations of internet items; see VXGenericKeychainItemLayer.
template <class Self, class Base>
class [[gnu::visibility("default")]] VXInternetKeychainItemLayer : public NSObjectLayer<Self, Base> {
 public:
  /// The base to derive a kind of internet item from.
  template <class Derived>
  using Subclass = VXInternetKeychainItemLayer<Derived, Self>;

  /// A new item of the receiving class with these fields, each text of which may be absent; absent itself
  /// when its initialiser says no. No store is asked.
  static NSRefPtr<Self> keychainItemWithUsername(NSStringArg username, NSStringArg password,
                                                 NSStringArg label, NSStringArg server, NSStringArg path,
                                                 std::int64_t port, VXInternetKeychainItemProtocol protocol);
  /// An item of the receiving class without fields that holds that class's query as its request, to be
  /// refreshed. Asserts the account and the server; no store is asked. Raises the invalid-argument exception
  /// for a protocol that is none.
  static NSRef<Self> findKeychainItemForUsername(NSStringArg username, NSStringArg server, NSStringArg path,
                                                 std::int64_t port, VXInternetKeychainItemProtocol protocol);
};

/// A password for an account on a server.
class NS_EXPORT VXInternetKeychainItem
    : public VXInternetKeychainItemLayer<VXInternetKeychainItem, VXPasswordKeychainItem> {
 public:
  using VXPasswordKeychainItem::initWithUsername;
  /// Nothing is checked, not even the protocol, and each text may be absent; see setPassword.
  virtual bool initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label,
                                NSStringArg server, NSStringArg path, std::int64_t port,
                                VXInternetKeychainItemProtocol protocol);

  /// As VXPasswordKeychainItem's; server, path, port and protocol must be the same, too.
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  /// As VXPasswordKeychainItem's; there must be a server that is not empty, too.
  bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& map) const override;
  /// Writes the class, and any port but 0, too. Raises the invalid-argument exception for a protocol that is
  /// none.
  NSRef<NSMutableDictionary> _createAttributesDictionary() const override;
  /// An answer without server, path or port clears that field; one without a protocol leaves it.
  void populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response) override;
  /// The protocol of a value of kSecAttrProtocol; none for any other text.
  virtual VXInternetKeychainItemProtocol _VXInternetKeychainItemProtocolFromType(NSStringArg type) const;

  /// Where the account is: texts that may be absent, and are copied by the setters; a port, where 0 is none;
  /// a protocol, which is not checked here.
  ///@{
  const NSRefPtr<NSString>& server() const { return server_; }
  void setServer(NSStringArg server);
  const NSRefPtr<NSString>& path() const { return path_; }
  void setPath(NSStringArg path);
  std::int64_t port() const { return port_; }
  void setPort(std::int64_t port) { port_ = port; }
  VXInternetKeychainItemProtocol protocol() const { return protocol_; }
  void setProtocol(VXInternetKeychainItemProtocol protocol) { protocol_ = protocol; }
  ///@}

  /// A new query for the class and the arguments that are present, the port only when it is above 0. Raises
  /// the invalid-argument exception for a protocol that is none.
  static NSRef<NSMutableDictionary> queryDictionaryWithUsername(NSStringArg username, NSStringArg server,
                                                                NSStringArg path, std::int64_t port,
                                                                VXInternetKeychainItemProtocol protocol);

 private:
  template <class Self, class Base>
  friend class VXInternetKeychainItemLayer;
  // A class that derives without the layer would quietly make objects of its base; it does not compile, as
  // its destructor would be inaccessible.
  template <class Self, class Base>
  friend class NSObjectLayer;
  template <class Self>
  friend class NSAllocated;
  ~VXInternetKeychainItem() override = default;

  static void assertFindable(const NSClass& receiver, NSStringArg username, NSStringArg server);

  NSRefPtr<NSString> server_;
  NSRefPtr<NSString> path_;
  std::int64_t port_ = 0;
  VXInternetKeychainItemProtocol protocol_ = VXInternetKeychainItemProtocolNone;
};

template <class Self, class Base>
NSRefPtr<Self> VXGenericKeychainItemLayer<Self, Base>::keychainItemWithUsername(NSStringArg username,
                                                                                NSStringArg password,
                                                                                NSStringArg label,
                                                                                NSStringArg serviceName) {
  const NSRef<Self> item = Self::alloc();
  VXGenericKeychainItem& initialised = *item;
  if (!initialised.initWithUsername(username, password, label, serviceName)) return nullptr;
  return item;
}

template <class Self, class Base>
NSRef<VXGenericKeychainItem> VXGenericKeychainItemLayer<Self, Base>::findKeychainItemForUsername(
    NSStringArg username, NSStringArg serviceName) {
  VXGenericKeychainItem::assertFindable(Self::classObject(), username, serviceName);
  const NSRef<VXGenericKeychainItem> item = VXGenericKeychainItem::alloc();
  item->setKeychainItemRequest(Self::queryDictionaryWithUsername(username, serviceName));
  return item;
}

template <class Self, class Base>
NSRefPtr<Self> VXInternetKeychainItemLayer<Self, Base>::keychainItemWithUsername(
    NSStringArg username, NSStringArg password, NSStringArg label, NSStringArg server, NSStringArg path,
    std::int64_t port, VXInternetKeychainItemProtocol protocol) {
  const NSRef<Self> item = Self::alloc();
  VXInternetKeychainItem& initialised = *item;
  if (!initialised.initWithUsername(username, password, label, server, path, port, protocol)) return nullptr;
  return item;
}

template <class Self, class Base>
NSRef<Self> VXInternetKeychainItemLayer<Self, Base>::findKeychainItemForUsername(
    NSStringArg username, NSStringArg server, NSStringArg path, std::int64_t port,
    VXInternetKeychainItemProtocol protocol) {
  VXInternetKeychainItem::assertFindable(Self::classObject(), username, server);
  const NSRef<Self> item = Self::alloc();
  item->setKeychainItemRequest(Self::queryDictionaryWithUsername(username, server, path, port, protocol));
  return item;
}
