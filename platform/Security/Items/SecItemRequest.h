#pragma once

#include <Foundation/NSDictionary.h>

#include <optional>

#include <Security/SecStorage.h>

/// Which keys an operation takes in addition to attributes, a secret and return flags, which all of them
/// take.
enum class SecRequestKind {
  change,  ///< none: the dictionary of an add, and the changes of an update
  select,  ///< kSecMatchExactly: the query of an update and of a deletion
  search,  ///< both kSecMatchExactly and kSecMatchLimit: the query of a look-up
};

/// The content of an attribute dictionary: what it names, and what the result should contain.
struct SecItemRequest {
  SecAttributes attributes;
  std::optional<SecSecret> secret;
  bool returnAttributes = false;
  bool returnData = false;
  bool exactly = false;
  std::optional<std::size_t> limit;  // of the array; without it, one match and no array

  SecQuery query() const { return {attributes, exactly}; }
};

/// Reads an attribute dictionary. One without a class is of the class `implied`, if that is given. Fails with
/// errSecParam for nil, and for a dictionary without a class, with an unknown key, with a value of the wrong
/// type, with an attribute of the other class or with a limit below 1.
SecItemRequest secReadRequest(const NSRefPtr<NSDictionary>& dictionary, SecRequestKind kind,
                              std::optional<SecItemClass> implied = std::nullopt);

/// Returns a new dictionary of what the request asks for of the entry; nil if it asks for nothing.
NSRefPtr<NSDictionary> secMakeResponse(const SecItemRequest& request, const SecEntry& entry);
