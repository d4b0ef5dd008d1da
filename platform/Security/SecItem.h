#pragma once

#include <Foundation/NSDictionary.h>

#include <Security/SecConstants.h>
#include <Security/SecStatus.h>

/// @file
/// The credential store as attribute maps. The four functions act on the process's default storage
/// (SecDefaultStorage.h) and are safe from any thread. They keep and change none of the maps that they are
/// given. Each answers a status: errSecParam for a map that is absent, has no class, an unknown key, a value
/// of a wrong kind or an attribute of the other class, and whatever the storage answers. After any status but
/// errSecSuccess nothing is changed and `result` is untouched.

/// Adds an entry; without kSecValueData its secret is empty. With kSecReturnAttributes, `result` gets a new
/// map of its attributes, without the secret. errSecDuplicateItem when there is one of the same identity,
/// errSecDataTooLarge for a secret above 16 MiB.
NS_EXPORT OSStatus SecItemAdd(const NSRefPtr<NSDictionary>& attributes,
                              NSRefPtr<NSDictionary>* result = nullptr);

/// Finds the oldest entry that the query matches. `result` gets a new map with the attributes for
/// kSecReturnAttributes and the secret for kSecReturnData. errSecItemNotFound when there is none.
NS_EXPORT OSStatus SecItemCopyMatching(const NSRefPtr<NSDictionary>& query,
                                       NSRefPtr<NSDictionary>* result = nullptr);

/// Changes what `attributesToUpdate` names of the oldest entry that the query matches. errSecItemNotFound
/// when there is none, errSecDuplicateItem when two entries would become one.
NS_EXPORT OSStatus SecItemUpdate(const NSRefPtr<NSDictionary>& query,
                                 const NSRefPtr<NSDictionary>& attributesToUpdate);

/// Deletes all entries that the query matches. errSecItemNotFound when there is none.
NS_EXPORT OSStatus SecItemDelete(const NSRefPtr<NSDictionary>& query);

/// The English message of a status, which every number has. `reserved` is not used.
NS_EXPORT NSRef<NSString> SecCopyErrorMessageString(OSStatus status, void* reserved = nullptr);
