#pragma once

#include <VXFoundation/VXFoundation.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>

/// The entry that the options of a keychain subcommand name.
struct KeychainEntry {
  std::string account;
  std::optional<std::string> service;  // a generic password; else an internet password:
  std::optional<std::string> server;
  std::optional<std::string> path;
  std::int64_t port = 0;
  std::string protocol;

  /// Adds the options to a subcommand; what does not go together is wrong usage.
  void addOptions(CLI::App& command);

  /// A new item, not yet in the keychain.
  NSRef<VXPasswordKeychainItem> makeItem(const NSRefPtr<NSString>& password,
                                         const NSRefPtr<NSString>& label) const;
  /// An item that has yet to be refreshed from the keychain.
  NSRef<VXPasswordKeychainItem> findItem() const;
};

/// The protocol as its option spells it; empty for none.
std::string nameOfProtocol(VXInternetKeychainItemProtocol protocol);

/// The text of an argument, which was checked to be UTF-8.
NSRef<NSString> textOfArgument(const std::string& argument);
/// Accepts arguments that are UTF-8.
extern const CLI::Validator isText;
