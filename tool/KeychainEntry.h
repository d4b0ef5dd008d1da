#pragma once

#include <VXFoundation/VXFoundation.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>

/// The entry that the options of a keychain subcommand name.
struct KeychainEntry {
  std::string account;
  std::optional<std::string> service;  // for a generic password; the others are for an internet password
  std::optional<std::string> server;
  std::optional<std::string> path;
  std::int64_t port = 0;
  std::string protocol;

  /// Adds the options to a subcommand; conflicting options are wrong usage.
  void addOptions(CLI::App& command);

  /// Returns a new item, not yet in the keychain.
  NSRef<VXPasswordKeychainItem> makeItem(const NSRefPtr<NSString>& password,
                                         const NSRefPtr<NSString>& label) const;
  /// Returns an item that has yet to be refreshed from the keychain.
  NSRef<VXPasswordKeychainItem> findItem() const;
};

/// Returns the protocol as its option spells it; empty for VXInternetKeychainItemProtocolNone.
std::string nameOfProtocol(VXInternetKeychainItemProtocol protocol);

/// Returns the string of an argument, which has been checked to be UTF-8.
NSRef<NSString> stringOfArgument(const std::string& argument);
/// Accepts arguments that are UTF-8.
extern const CLI::Validator isUTF8;
/// Accepts digits without a leading zero: the parser itself takes 010 for octal.
extern const CLI::Validator isDecimal;
