#pragma once

#include <Foundation/NSDictionary.h>

#include <optional>

#include <Security/SecEntry.h>

/// The content of an attribute dictionary: what it names, and what the result should contain.
struct SecItemRequest {
  SecAttributes attributes;
  std::optional<SecSecret> secret;
  bool returnAttributes = false;
  bool returnData = false;
};

/// Reads an attribute dictionary. One without a class is of the class `implied`, if that is given. Fails with
/// errSecParam for nil, and for a dictionary without a class, with an unknown key, with a value of the wrong
/// type or with an attribute of the other class.
SecItemRequest secReadRequest(const NSRefPtr<NSDictionary>& dictionary,
                              std::optional<SecItemClass> implied = std::nullopt);

/// Returns a new dictionary of the entry's attributes, its secret, or both; nil if neither is wanted.
NSRefPtr<NSDictionary> secMakeResponse(const SecEntry& entry, bool withAttributes, bool withData);
