#pragma once

#include <Foundation/NSString.h>

/// @file
/// The names in attribute maps and their values, compared by value only. Stores keep values, never names.

/// The key of the kind of entry, kSecClassGenericPassword or kSecClassInternetPassword. Every query has it.
NS_EXPORT extern const NSRef<NSString> kSecClass;
/// Keys of texts of either kind. The label is not part of an entry's identity.
///@{
NS_EXPORT extern const NSRef<NSString> kSecAttrAccount;
NS_EXPORT extern const NSRef<NSString> kSecAttrLabel;
///@}
/// The key of the service, a text, of generic passwords.
NS_EXPORT extern const NSRef<NSString> kSecAttrService;
/// Keys of texts of internet passwords. No path is the same as an empty one.
///@{
NS_EXPORT extern const NSRef<NSString> kSecAttrServer;
NS_EXPORT extern const NSRef<NSString> kSecAttrPath;
///@}
/// The key of the port, a number, of internet passwords. No port is the same as 0.
NS_EXPORT extern const NSRef<NSString> kSecAttrPort;
/// The key of the protocol, a text, of internet passwords.
NS_EXPORT extern const NSRef<NSString> kSecAttrProtocol;
/// The key of the secret, an NSData.
NS_EXPORT extern const NSRef<NSString> kSecValueData;
/// Keys of numbers, which say whether the answer has the attributes, and the secret.
///@{
NS_EXPORT extern const NSRef<NSString> kSecReturnAttributes;
NS_EXPORT extern const NSRef<NSString> kSecReturnData;
///@}

/// Values of kSecClass.
///@{
NS_EXPORT extern const NSRef<NSString> kSecClassGenericPassword;
NS_EXPORT extern const NSRef<NSString> kSecClassInternetPassword;
///@}

/// Values of kSecAttrProtocol, which may be any other text, too. They are kept in stores and never change.
///@{
NS_EXPORT extern const NSRef<NSString> kSecAttrProtocolHTTP;
NS_EXPORT extern const NSRef<NSString> kSecAttrProtocolHTTPS;
NS_EXPORT extern const NSRef<NSString> kSecAttrProtocolFTP;
NS_EXPORT extern const NSRef<NSString> kSecAttrProtocolSSH;
///@}
