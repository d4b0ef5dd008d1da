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

/// Reads an attribute map. One without a class is of the class `implied`, if that is given. Absent for a map
/// that is absent, has no class, an unknown key, a value of a wrong kind or an attribute of the other class.
std::optional<SecItemRequest> secReadRequest(const RefPtr<NSDictionary>& map,
                                             std::optional<SecItemClass> implied = std::nullopt);

/// A new map of the entry's attributes, of its secret, or both; absent when neither is wanted.
RefPtr<NSDictionary> secMakeResponse(const SecEntry& entry, bool withAttributes, bool withData);
