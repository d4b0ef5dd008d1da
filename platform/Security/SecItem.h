#pragma once

#include <utility>

#include <Foundation/NSDictionary.h>

#include <Security/SecConstants.h>
#include <Security/SecStatus.h>

/// @file
/// The credential store, addressed by attribute dictionaries. The four functions act on the process's default
/// storage (SecDefaultStorage.h) and are safe from any thread. They neither keep nor change the dictionaries
/// that they are given. Each returns a status: errSecParam for nil and for a dictionary that has no class, an
/// unknown key, a value of the wrong type or an attribute of the other class, and whatever the storage
/// returns. After any status but errSecSuccess nothing is changed and `result` is untouched.
///
/// Where several entries match a query, the one whose identity is exactly the query's comes first, then the
/// oldest; with kSecMatchExactly only that one matches. Secrets are read only for kSecReturnData.

/// Runs `operation` with a place for its result and stores the result in `result`, unless that is null;
/// returns errSecParam if it is of another class.
template <class Kind, class Operation>
OSStatus secDeliver(NSRefPtr<Kind>* result, Operation&& operation) {
  NSRefPtr<NSObject> any;
  const OSStatus status = operation(&any);
  if (status != errSecSuccess || !any || !result) return status;
  auto ofKind = NSDynamicCast<Kind>(any);
  if (!ofKind) return errSecParam;
  *result = std::move(ofKind);
  return errSecSuccess;
}

/// Adds an entry; without kSecValueData its secret is empty. With kSecReturnAttributes, `result` is set to a
/// new dictionary of its attributes, without the secret. Returns errSecDuplicateItem if there is an entry of
/// the same identity, and errSecDataTooLarge for a secret larger than 16 MiB.
[[nodiscard]] NS_EXPORT OSStatus SecItemAdd(const NSRefPtr<NSDictionary>& attributes,
                                            NSRefPtr<NSObject>* result = nullptr);

/// Finds the first entry that matches the query or, with kSecMatchLimit, as many as that says. `result` is
/// set to a new dictionary with the attributes for kSecReturnAttributes and the secret for kSecReturnData,
/// with kSecMatchLimit to an array of them; with neither flag it is untouched. Returns errSecItemNotFound
/// if nothing matches, and errSecParam for a limit below 1.
[[nodiscard]] NS_EXPORT OSStatus SecItemCopyMatching(const NSRefPtr<NSDictionary>& query,
                                                     NSRefPtr<NSObject>* result = nullptr);

/// The same with a place for a dictionary or an array. Returns errSecParam, and leaves the place untouched,
/// if the result is not of that class.
///@{
template <NSOtherKindOf<NSObject> Kind>
[[nodiscard]] OSStatus SecItemAdd(const NSRefPtr<NSDictionary>& attributes, NSRefPtr<Kind>* result) {
  return secDeliver(result, [&](NSRefPtr<NSObject>* any) { return SecItemAdd(attributes, any); });
}
template <NSOtherKindOf<NSObject> Kind>
[[nodiscard]] OSStatus SecItemCopyMatching(const NSRefPtr<NSDictionary>& query, NSRefPtr<Kind>* result) {
  return secDeliver(result, [&](NSRefPtr<NSObject>* any) { return SecItemCopyMatching(query, any); });
}
///@}

/// Changes what `attributesToUpdate` names in the first entry that matches the query. Returns
/// errSecItemNotFound if nothing matches, and errSecDuplicateItem if two entries would become the same.
[[nodiscard]] NS_EXPORT OSStatus SecItemUpdate(const NSRefPtr<NSDictionary>& query,
                                               const NSRefPtr<NSDictionary>& attributesToUpdate);

/// Deletes all entries that match the query. Returns errSecItemNotFound if nothing matches.
[[nodiscard]] NS_EXPORT OSStatus SecItemDelete(const NSRefPtr<NSDictionary>& query);

/// Returns the English message of a status; every number has one. `reserved` is not used.
NS_EXPORT NSRef<NSString> SecCopyErrorMessageString(OSStatus status, void* reserved = nullptr);
