#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <Security/SecSecret.h>

/// Text of an attribute: UTF-16, overwritten when it is let go of, unpaired surrogates kept.
using SecText = std::basic_string<char16_t, std::char_traits<char16_t>, CleansingAllocator<char16_t>>;

enum class SecItemClass : std::uint8_t { genericPassword = 1, internetPassword = 2 };

/// The attributes that tell one entry from another. Absent and empty are kept apart here, since the
/// values come back as they were given; SecIdentity says when two entries are the same one.
struct SecAttributes {
  SecItemClass itemClass = SecItemClass::genericPassword;
  std::optional<SecText> account;
  std::optional<SecText> service;  // generic passwords only
  std::optional<SecText> server;   // internet passwords only, as are the next three
  std::optional<SecText> path;
  std::optional<std::int64_t> port;
  std::optional<SecText> protocol;
  std::optional<SecText> label;  // never part of the identity

  friend bool operator==(const SecAttributes&, const SecAttributes&) = default;
};

/// One password of a store: what is known of it, and the secret itself.
struct SecEntry {
  SecAttributes attributes;
  SecSecret secret;
};
