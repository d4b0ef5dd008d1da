#pragma once

#include <Foundation/NSString.h>

/// @file
/// The keys of attribute dictionaries and their values, compared by value only. Stores keep values, never
/// keys.

/// The key of the entry's class, kSecClassGenericPassword or kSecClassInternetPassword. Every query has it.
NS_EXPORT extern const NSRef<NSString>& kSecClass;
/// Keys of strings in entries of either class. The label is not part of an entry's identity.
///@{
NS_EXPORT extern const NSRef<NSString>& kSecAttrAccount;
NS_EXPORT extern const NSRef<NSString>& kSecAttrLabel;
///@}
/// The key of the service of a generic password, a string.
NS_EXPORT extern const NSRef<NSString>& kSecAttrService;
/// Keys of strings in internet passwords. A missing path is the same as an empty one.
///@{
NS_EXPORT extern const NSRef<NSString>& kSecAttrServer;
NS_EXPORT extern const NSRef<NSString>& kSecAttrPath;
///@}
/// The key of the port of an internet password, a number. A missing port is the same as 0.
NS_EXPORT extern const NSRef<NSString>& kSecAttrPort;
/// The key of the protocol of an internet password, a string.
NS_EXPORT extern const NSRef<NSString>& kSecAttrProtocol;
/// The key of the secret, an NSData.
NS_EXPORT extern const NSRef<NSString>& kSecValueData;
/// Keys of numbers that say whether the result contains the attributes, and whether it contains the secret.
///@{
NS_EXPORT extern const NSRef<NSString>& kSecReturnAttributes;
NS_EXPORT extern const NSRef<NSString>& kSecReturnData;
///@}

/// The key of how many matches SecItemCopyMatching returns, as an array: a number from 1 on, or
/// kSecMatchLimitAll. Without it, it returns one match, and no array.
NS_EXPORT extern const NSRef<NSString>& kSecMatchLimit;
/// The value of that key for all matches.
NS_EXPORT extern const NSRef<NSString>& kSecMatchLimitAll;
/// The key of a number that says whether the query's identity must be the entry's, so that a query without a
/// port, path or protocol stands for the entry that has none.
NS_EXPORT extern const NSRef<NSString>& kSecMatchExactly;

/// Values of kSecClass.
///@{
NS_EXPORT extern const NSRef<NSString>& kSecClassGenericPassword;
NS_EXPORT extern const NSRef<NSString>& kSecClassInternetPassword;
///@}

/// Values of kSecAttrProtocol, which may be any other string too. They are kept in stores and never change.
///@{
NS_EXPORT extern const NSRef<NSString>& kSecAttrProtocolHTTP;
NS_EXPORT extern const NSRef<NSString>& kSecAttrProtocolHTTPS;
NS_EXPORT extern const NSRef<NSString>& kSecAttrProtocolFTP;
NS_EXPORT extern const NSRef<NSString>& kSecAttrProtocolSSH;
///@}
