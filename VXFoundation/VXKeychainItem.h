#pragma once

#include <cstdint>
#include <utility>

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSFunctionRef.h>
#include <Foundation/NSString.h>

/// @file
/// Items of the credential store. An operation returns whether it succeeded. If not, it sets `*error`, unless
/// `error` is null, to an error of the domain VXFoundationBundleIdentifier: code 0 for incomplete attributes
/// (the store is not accessed), -201 for an entry that was not found, -200 for any other status, each with a
/// localised description and, except for code 0, the platform's error underneath. The item is then unchanged.

/// One entry of the process's credential store: account, secret and label, with the request that identifies
/// the entry in the store and the store's last response. Each kind of entry is a subclass. This class has the
/// sequence of steps of each operation; subclasses override isEqual and the three functions after it, and
/// every override calls its base class's version first. An item may be used by one thread at a time. Its
/// dictionaries hold the secret for as long as the item does.
class NS_EXPORT VXKeychainItem : public NSObject::Subclass<VXKeychainItem> {
 public:
  /// initWithUsername:data:label:. Checks nothing; copies the strings and the data.
  virtual bool initWithUsernameData(NSStringArg username, const NSRefPtr<NSData>& data, NSStringArg label);

  /// Returns whether `other` is of the receiver's class or a subclass of it and has the same label, account
  /// and secret; the dictionaries are not compared. This is not symmetric: an item of a subclass does not
  /// equal one of its base class. The hash is still that of the object's identity.
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  /// Returns whether the dictionary, which may be nil, has an account and a secret that are not empty. The
  /// spelling of the name is part of the interface.
  virtual bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const;
  /// Returns a new dictionary of the fields that are not nil, under the names in SecConstants.h.
  virtual NSRef<NSMutableDictionary> _createAttributesDictionary() const;
  /// Keeps the dictionary itself, not a copy, and sets the fields to its values: a missing value clears its
  /// field, but a missing secret leaves the secret unchanged.
  virtual void populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response);

  /// Adds an entry with the item's fields. The dictionary passed to the store, with the secret, becomes the
  /// request.
  [[nodiscard, gnu::warn_unused_result]] virtual bool addItemToKeychain(NSRefPtr<NSError>* error = nullptr);
  /// Sets the fields to those of the entry that the request finds. Asserts that the request is not nil; if
  /// the assertion handler returns, a nil request results in the error -200. With data, the response must
  /// satisfy dictHasVaildKeychainData, else the error has code 0; without data, the secret is left unchanged.
  [[nodiscard, gnu::warn_unused_result]] virtual bool refreshItemFromKeychainIncludeData(
      bool includeData, NSRefPtr<NSError>* error = nullptr);
  /// Updates the entry that the request finds with the item's fields. Asserts that neither response nor
  /// request is nil, and leaves both unchanged.
  [[nodiscard, gnu::warn_unused_result]] virtual bool updateItemInKeychain(
      NSRefPtr<NSError>* error = nullptr);
  /// Deletes the entry that has the item's current fields. If there is none, returns true but still sets the
  /// error -201.
  [[nodiscard, gnu::warn_unused_result]] virtual bool deleteItemFromKeychain(
      NSRefPtr<NSError>* error = nullptr);

  /// Changes the entry of the response, and no other, to the item's fields, then sets request and response
  /// from the entry as it now is, so that a renamed item can be refreshed. A field that is nil stays what it
  /// is in the store, and so does the secret where the item has not loaded it; an empty label clears the
  /// label. Raises the invalid-argument exception without a response. Returns false, with the error, where
  /// the fields are invalid, where the store refuses the change, and where it fails to return the entry after
  /// it was changed.
  [[nodiscard, gnu::warn_unused_result]] virtual bool updateAndFollow(NSRefPtr<NSError>* error = nullptr);
  /// Deletes the entry of the response, and no other; the secret need not be loaded. Raises the
  /// invalid-argument exception without a response. Succeeds where the entry is gone, but gives the error
  /// -201 even so.
  [[nodiscard, gnu::warn_unused_result]] virtual bool deleteFoundItem(NSRefPtr<NSError>* error = nullptr);

  /// The fields, each of which may be nil. Setters copy their argument; the store is not accessed.
  ///@{
  const NSRefPtr<NSString>& label() const { return label_; }
  void setLabel(NSStringArg label);
  const NSRefPtr<NSString>& username() const { return username_; }
  void setUsername(NSStringArg username);
  const NSRefPtr<NSData>& data() const { return data_; }
  void setData(const NSRefPtr<NSData>& data);
  ///@}
  /// The dictionary that finds the entry and the store's last response, each of which may be nil. They are
  /// not copied: the item holds references to them. They may hold the secret.
  ///@{
  const NSRefPtr<NSDictionary>& keychainItemRequest() const { return keychainItemRequest_; }
  void setKeychainItemRequest(NSRefPtr<NSDictionary> request) { keychainItemRequest_ = std::move(request); }
  const NSRefPtr<NSDictionary>& keychainItemResponse() const { return keychainItemResponse_; }
  void setKeychainItemResponse(NSRefPtr<NSDictionary> response) {
    keychainItemResponse_ = std::move(response);
  }
  ///@}

 protected:
  /// What the class operations that return several items share: one item from `makeItem` for each entry that
  /// matches the query, which is changed. Nil after an error.
  static NSRefPtr<NSArray> itemsMatching(const NSRef<NSMutableDictionary>& query, bool includeData,
                                         NSFunctionRef<NSRefPtr<VXKeychainItem>()> makeItem,
                                         NSRefPtr<NSError>* error);

 private:
  NSRefPtr<NSMutableDictionary> validAttributes(NSRefPtr<NSError>* error) const;
  NSRefPtr<NSMutableDictionary> validChanges(NSRefPtr<NSError>* error) const;
  NSRef<NSDictionary> requiredResponse(NSStringArg operation) const;

  NSRefPtr<NSString> label_;
  NSRefPtr<NSString> username_;
  NSRefPtr<NSData> data_;
  NSRefPtr<NSDictionary> keychainItemRequest_;
  NSRefPtr<NSDictionary> keychainItemResponse_;
};

/// An item whose secret is a password: the UTF-8 encoding of a string that is not empty.
class NS_EXPORT VXPasswordKeychainItem : public VXKeychainItem::Subclass<VXPasswordKeychainItem> {
 public:
  /// Checks nothing; each argument may be nil. See setPassword.
  virtual bool initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label);

  /// Returns the secret as a new string, marked as a secret if the data is. Returns nil if there is no secret
  /// or it is malformed UTF-8.
  [[nodiscard]] NSRefPtr<NSString> password() const;
  /// Sets the secret to the password's UTF-8 (RFC 3629), marked as a secret. Nil, or a string with an
  /// unpaired surrogate, which UTF-8 cannot encode, clears the secret.
  void setPassword(NSStringArg password);

  /// Does the same as refreshItemFromKeychainIncludeData; here the data is the password.
  [[nodiscard, gnu::warn_unused_result]] virtual bool refreshItemFromKeychainIncludePassword(
      bool includePassword, NSRefPtr<NSError>* error = nullptr);

  /// As in VXKeychainItem, and the secret must be UTF-8.
  bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const override;
};

class VXGenericKeychainItem;

/// The class operations of generic items, which act for the class that receives them: a class MailItem
/// derived from VXGenericKeychainItem::Subclass<MailItem> has factories that make a MailItem and use
/// MailItem's query.
template <class Self, class Base>
class [[gnu::visibility("default")]] VXGenericKeychainItemLayer : public NSObjectLayer<Self, Base> {
 public:
  /// The base class from which to derive a kind of generic item.
  template <class Derived>
  using Subclass = VXGenericKeychainItemLayer<Derived, Self>;

  /// Returns a new item of the receiving class with these fields, each of which may be nil; returns nil if
  /// the item's initialiser returns false. The store is not accessed.
  [[nodiscard]] static NSRefPtr<Self> keychainItemWithUsername(NSStringArg username, NSStringArg password,
                                                               NSStringArg label, NSStringArg serviceName);
  /// Returns an item without fields, to be refreshed, whose request is the receiving class's query. It is a
  /// VXGenericKeychainItem, whatever the receiving class. Asserts that neither argument is nil; the store is
  /// not accessed.
  static NSRef<VXGenericKeychainItem> findKeychainItemForUsername(NSStringArg username,
                                                                  NSStringArg serviceName);
  /// Returns all items of the receiving class whose account and service are these, any where one is nil: the
  /// one of exactly this identity first, then the oldest. Each has its response and a request that finds its
  /// entry and no other. Empty where there are none; nil, with the error, where the store fails. Passwords
  /// are read only where asked for, and an item whose secret is not UTF-8 is in the array all the same.
  [[nodiscard]] static NSRefPtr<NSArray> findAllKeychainItemsForUsername(
      NSStringArg username, NSStringArg serviceName, bool includePassword = false,
      NSRefPtr<NSError>* error = nullptr);
};

/// A password for an account of a service.
class NS_EXPORT VXGenericKeychainItem
    : public VXGenericKeychainItemLayer<VXGenericKeychainItem, VXPasswordKeychainItem> {
 public:
  using VXPasswordKeychainItem::initWithUsername;
  /// Checks nothing; each argument may be nil. See setPassword.
  virtual bool initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label,
                                NSStringArg serviceName);

  /// As in VXPasswordKeychainItem, and the services must be the same.
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  /// As in VXPasswordKeychainItem, and there must be a service that is not empty.
  bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const override;
  /// Also writes the class, and the service unless it is nil.
  NSRef<NSMutableDictionary> _createAttributesDictionary() const override;
  /// Also sets the service; a response without one clears that field.
  void populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response) override;

  /// The service that the account belongs to; may be nil. The setter copies.
  ///@{
  const NSRefPtr<NSString>& serviceName() const { return serviceName_; }
  void setServiceName(NSStringArg serviceName);
  ///@}

  /// Returns a new query for the class and the arguments that are not nil. A subclass may define a function
  /// of this name, which its findKeychainItemForUsername then uses.
  static NSRef<NSMutableDictionary> queryDictionaryWithUsername(NSStringArg username,
                                                                NSStringArg serviceName);

 private:
  template <class Self, class Base>
  friend class VXGenericKeychainItemLayer;
  // A class derived without the layer would silently make objects of its base class. It does not compile, as
  // its destructor would be inaccessible.
  template <class Self, class Base>
  friend class NSObjectLayer;
  template <class Self>
  friend class NSAllocated;
  ~VXGenericKeychainItem() override = default;

  static void assertFindable(const NSClass& receiver, NSStringArg username, NSStringArg serviceName);

  NSRefPtr<NSString> serviceName_;
};

/// The protocol that an internet password is for. An item can hold other values, but making a dictionary from
/// them raises the invalid-argument exception.
enum VXInternetKeychainItemProtocol : std::uint64_t {
  VXInternetKeychainItemProtocolNone,   ///< no kSecAttrProtocol in dictionaries
  VXInternetKeychainItemProtocolHTTP,   ///< kSecAttrProtocolHTTP
  VXInternetKeychainItemProtocolHTTPS,  ///< kSecAttrProtocolHTTPS
  VXInternetKeychainItemProtocolFTP,    ///< kSecAttrProtocolFTP
  VXInternetKeychainItemProtocolSSH,    ///< kSecAttrProtocolSSH
};

/// The class operations of internet items; see VXGenericKeychainItemLayer.
template <class Self, class Base>
class [[gnu::visibility("default")]] VXInternetKeychainItemLayer : public NSObjectLayer<Self, Base> {
 public:
  /// The base class from which to derive a kind of internet item.
  template <class Derived>
  using Subclass = VXInternetKeychainItemLayer<Derived, Self>;

  /// Returns a new item of the receiving class with these fields, of which every string may be nil; returns
  /// nil if the item's initialiser returns false. The store is not accessed.
  [[nodiscard]] static NSRefPtr<Self> keychainItemWithUsername(
      NSStringArg username, NSStringArg password, NSStringArg label, NSStringArg server, NSStringArg path,
      std::int64_t port, VXInternetKeychainItemProtocol protocol);
  /// Returns an item of the receiving class without fields, to be refreshed, whose request is that class's
  /// query. Asserts that neither account nor server is nil; the store is not accessed. Raises the
  /// invalid-argument exception for an unknown protocol.
  static NSRef<Self> findKeychainItemForUsername(NSStringArg username, NSStringArg server, NSStringArg path,
                                                 std::int64_t port, VXInternetKeychainItemProtocol protocol);
  /// Returns all items of the receiving class whose fields are these, any where one is nil, the port 0 or the
  /// protocol none; otherwise as VXGenericKeychainItem's. Raises the invalid-argument exception for a value
  /// that is not a protocol.
  [[nodiscard]] static NSRefPtr<NSArray> findAllKeychainItemsForUsername(
      NSStringArg username, NSStringArg server, NSStringArg path = nullptr, std::int64_t port = 0,
      VXInternetKeychainItemProtocol protocol = VXInternetKeychainItemProtocolNone,
      bool includePassword = false, NSRefPtr<NSError>* error = nullptr);
};

/// A password for an account on a server.
class NS_EXPORT VXInternetKeychainItem
    : public VXInternetKeychainItemLayer<VXInternetKeychainItem, VXPasswordKeychainItem> {
 public:
  using VXPasswordKeychainItem::initWithUsername;
  /// Checks nothing, not even the protocol; every string may be nil. See setPassword. Unlike that of generic
  /// items, it calls the short initialiser of the base class, whatever a subclass overrides.
  virtual bool initWithUsername(NSStringArg username, NSStringArg password, NSStringArg label,
                                NSStringArg server, NSStringArg path, std::int64_t port,
                                VXInternetKeychainItemProtocol protocol);

  /// As in VXPasswordKeychainItem, and server, path, port and protocol must be the same.
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  /// As in VXPasswordKeychainItem, and there must be a server that is not empty.
  bool dictHasVaildKeychainData(const NSRefPtr<NSDictionary>& dictionary) const override;
  /// Also writes the class, and any port but 0. Raises the invalid-argument exception for an unknown
  /// protocol.
  NSRef<NSMutableDictionary> _createAttributesDictionary() const override;
  /// A response without server, path or port clears that field; one without a protocol leaves it unchanged.
  void populateKeychainItemWithKeychainResponse(const NSRefPtr<NSDictionary>& response) override;
  /// Returns the protocol for a value of kSecAttrProtocol; VXInternetKeychainItemProtocolNone for any other
  /// string.
  virtual VXInternetKeychainItemProtocol _VXInternetKeychainItemProtocolFromType(NSStringArg type) const;

  /// Where the account is. The strings may be nil, and setters copy them; port 0 means that there is no port;
  /// the protocol is not checked here.
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

  /// Returns a new query for the class and the arguments that are not nil, with the port only if it is above
  /// 0. Raises the invalid-argument exception for an unknown protocol.
  static NSRef<NSMutableDictionary> queryDictionaryWithUsername(NSStringArg username, NSStringArg server,
                                                                NSStringArg path, std::int64_t port,
                                                                VXInternetKeychainItemProtocol protocol);

 private:
  template <class Self, class Base>
  friend class VXInternetKeychainItemLayer;
  // A class derived without the layer would silently make objects of its base class. It does not compile, as
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

template <class Self, class Base>
NSRefPtr<NSArray> VXGenericKeychainItemLayer<Self, Base>::findAllKeychainItemsForUsername(
    NSStringArg username, NSStringArg serviceName, bool includePassword, NSRefPtr<NSError>* error) {
  return VXKeychainItem::itemsMatching(
      Self::queryDictionaryWithUsername(username, serviceName), includePassword,
      [] { return NSRefPtr<VXKeychainItem>(Self::alloc()); }, error);
}

template <class Self, class Base>
NSRefPtr<NSArray> VXInternetKeychainItemLayer<Self, Base>::findAllKeychainItemsForUsername(
    NSStringArg username, NSStringArg server, NSStringArg path, std::int64_t port,
    VXInternetKeychainItemProtocol protocol, bool includePassword, NSRefPtr<NSError>* error) {
  return VXKeychainItem::itemsMatching(
      Self::queryDictionaryWithUsername(username, server, path, port, protocol), includePassword,
      [] { return NSRefPtr<VXKeychainItem>(Self::alloc()); }, error);
}
