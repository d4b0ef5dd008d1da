#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <Security/SecSecret.h>

enum class SecItemClass : std::uint8_t { genericPassword = 1, internetPassword = 2 };

/// The attributes that tell one entry from another. Absent and empty are kept apart here, since the
/// values come back as they were given; SecIdentity says when two entries are the same one.
struct SecAttributes {
  SecItemClass itemClass = SecItemClass::genericPassword;
  std::optional<std::u16string> account;
  std::optional<std::u16string> service;  // generic passwords only
  std::optional<std::u16string> server;   // internet passwords only, as are the next three
  std::optional<std::u16string> path;
  std::optional<std::int64_t> port;
  std::optional<std::u16string> protocol;
  std::optional<std::u16string> label;  // never part of the identity

  friend bool operator==(const SecAttributes&, const SecAttributes&) = default;
};

/// One password of a store: what is known of it, and the secret itself.
struct SecEntry {
  SecAttributes attributes;
  SecSecret secret;
};
