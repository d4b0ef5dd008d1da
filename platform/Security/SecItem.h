#pragma once

#include <Foundation/NSDictionary.h>

#include <Security/SecConstants.h>
#include <Security/SecStatus.h>

/// @file
/// The credential store, addressed by attribute dictionaries. The four functions act on the process's default
/// storage (SecDefaultStorage.h) and are safe from any thread. They neither keep nor change the dictionaries
/// that they are given. Each returns a status: errSecParam for nil and for a dictionary that has no class, an
/// unknown key, a value of the wrong type or an attribute of the other class, and whatever the storage
/// returns. After any status but errSecSuccess nothing is changed and `result` is untouched.

/// Adds an entry; without kSecValueData its secret is empty. With kSecReturnAttributes, `result` becomes a
/// new dictionary of its attributes, without the secret. Returns errSecDuplicateItem if there is an entry of
/// the same identity, and errSecDataTooLarge for a secret larger than 16 MiB.
NS_EXPORT OSStatus SecItemAdd(const NSRefPtr<NSDictionary>& attributes,
                              NSRefPtr<NSDictionary>* result = nullptr);

/// Finds the oldest entry that the query matches. `result` becomes a new dictionary with the attributes for
/// kSecReturnAttributes and the secret for kSecReturnData. Returns errSecItemNotFound if nothing matches.
NS_EXPORT OSStatus SecItemCopyMatching(const NSRefPtr<NSDictionary>& query,
                                       NSRefPtr<NSDictionary>* result = nullptr);

/// Changes what `attributesToUpdate` names in the oldest entry that the query matches. Returns
/// errSecItemNotFound if nothing matches, and errSecDuplicateItem if two entries would become the same.
NS_EXPORT OSStatus SecItemUpdate(const NSRefPtr<NSDictionary>& query,
                                 const NSRefPtr<NSDictionary>& attributesToUpdate);

/// Deletes all entries that the query matches. Returns errSecItemNotFound if nothing matches.
NS_EXPORT OSStatus SecItemDelete(const NSRefPtr<NSDictionary>& query);

/// Returns the English message of a status; every number has one. `reserved` is not used.
NS_EXPORT NSRef<NSString> SecCopyErrorMessageString(OSStatus status, void* reserved = nullptr);
