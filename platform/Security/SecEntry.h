#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <Security/SecSecret.h>

/// Text of an attribute: UTF-16, overwritten when it is let go of, unpaired surrogates kept.
using SecText = std::basic_string<char16_t, std::char_traits<char16_t>, SecCleansingAllocator<char16_t>>;

/// The kind of an entry. The numbers are kept in stores and never change.
enum class SecItemClass : std::uint8_t {
  genericPassword = 1,   ///< for an account of a service
  internetPassword = 2,  ///< for an account on a server
};

/// The attributes that tell one entry from another. Absent and empty are kept apart here, since the
/// values come back as they were given; SecIdentity says when two entries are the same one.
struct SecAttributes {
  /// Of every entry.
  ///@{
  SecItemClass itemClass = SecItemClass::genericPassword;
  std::optional<SecText> account;
  ///@}
  /// Of generic passwords only.
  std::optional<SecText> service;
  /// Of internet passwords only.
  ///@{
  std::optional<SecText> server;
  std::optional<SecText> path;
  std::optional<std::int64_t> port;
  std::optional<SecText> protocol;
  ///@}
  /// For people; never part of the identity.
  std::optional<SecText> label;

  /// Whether all of them are the same, the label included.
  friend bool operator==(const SecAttributes&, const SecAttributes&) = default;
};

/// One password of a store: what is known of it, and the secret itself.
struct SecEntry {
  SecAttributes attributes;  ///< what may be asked for
  SecSecret secret;          ///< what is kept: bytes of any content and length
};
