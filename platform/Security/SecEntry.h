#pragma once

#include <cstdint>
#include <optional>

#include <Security/SecSecret.h>
#include <Security/SecText.h>

/// The class of an entry. The numbers are kept in stores and never change.
enum class SecItemClass : std::uint8_t {
  genericPassword = 1,   ///< for an account of a service
  internetPassword = 2,  ///< for an account on a server
};

/// The attributes of an entry. No value and an empty value are distinguished here, since values are returned
/// as they were given; secIdentity decides when two entries are the same.
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

  /// Whether all attributes are equal, the label included.
  friend bool operator==(const SecAttributes&, const SecAttributes&) = default;
};

/// One password of a store: its attributes, and the secret itself.
struct SecEntry {
  SecAttributes attributes;  ///< what queries match
  SecSecret secret;          ///< bytes of any content and length
};
