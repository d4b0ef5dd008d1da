#pragma once

#include <Foundation/NSString.h>

/// The names in attribute maps, compared by value only. Stores do not keep them.
FOUNDATION_EXPORT extern const Ref<NSString> kSecClass;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrAccount;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrLabel;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrService;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrServer;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrPath;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrPort;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocol;
FOUNDATION_EXPORT extern const Ref<NSString> kSecValueData;
FOUNDATION_EXPORT extern const Ref<NSString> kSecReturnAttributes;
FOUNDATION_EXPORT extern const Ref<NSString> kSecReturnData;

/// Values of kSecClass.
FOUNDATION_EXPORT extern const Ref<NSString> kSecClassGenericPassword;
FOUNDATION_EXPORT extern const Ref<NSString> kSecClassInternetPassword;

/// Values of kSecAttrProtocol, which may be any other text, too. They are kept in stores and never change.
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocolHTTP;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocolHTTPS;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocolFTP;
FOUNDATION_EXPORT extern const Ref<NSString> kSecAttrProtocolSSH;
