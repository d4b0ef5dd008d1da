#pragma once

#include <Foundation/NSDictionary.h>

#include <optional>

#include <Security/SecEntry.h>

/// An attribute map, read: what it names, and what the result should hold.
struct SecItemRequest {
  SecAttributes attributes;
  std::optional<SecSecret> secret;
  bool returnAttributes = false;
  bool returnData = false;
};

/// Reads an attribute map. One without a class is of the class `implied`, if that is given. Fails with
/// errSecParam for nil, and for a map without a class, with an unknown key, with a value of a wrong kind or
/// with an attribute of the other class.
SecItemRequest secReadRequest(const NSRefPtr<NSDictionary>& map,
                              std::optional<SecItemClass> implied = std::nullopt);

/// A new map of the entry's attributes, of its secret, or both; nil when neither is wanted.
NSRefPtr<NSDictionary> secMakeResponse(const SecEntry& entry, bool withAttributes, bool withData);
