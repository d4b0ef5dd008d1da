#pragma once

#include <Foundation/NSString.h>

/// @file
/// The names in attribute maps and their values, compared by value only. Stores keep values, never names.

/// The key of the kind of entry, kSecClassGenericPassword or kSecClassInternetPassword. Every query has it.
FOUNDATION_EXPORT extern const Ref<NSString> kSecClass;
/// Keys of texts of either kind. The label is not part of an entry's identity.
///@{
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrAccount;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrLabel;
///@}
/// The key of the service, a text, of generic passwords.
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrService;
/// Keys of texts of internet passwords. No path is the same as an empty one.
///@{
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrServer;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrPath;
///@}
/// The key of the port, a number, of internet passwords. No port is the same as 0.
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrPort;
/// The key of the protocol, a text, of internet passwords.
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocol;
/// The key of the secret, an NSData.
FOUNDATION_EXPORT extern const Ref<NSString> kSecValueData;
/// Keys of numbers, which say whether the answer has the attributes, and the secret.
///@{
FOUNDATION_EXPORT extern const Ref<NSString> kSecReturnAttributes;
FOUNDATION_EXPORT extern const Ref<NSString> kSecReturnData;
///@}

/// Values of kSecClass.
///@{
FOUNDATION_EXPORT extern const Ref<NSString> kSecClassGenericPassword;
FOUNDATION_EXPORT extern const Ref<NSString> kSecClassInternetPassword;
///@}

/// Values of kSecAttrProtocol, which may be any other text, too. They are kept in stores and never change.
///@{
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocolHTTP;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocolHTTPS;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocolFTP;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocolSSH;
///@}
