#pragma once

#include <Security/SecStorage.h>
#include <VXFoundation/VXFoundation.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The entries that the options of a keychain subcommand name.
struct KeychainEntry {
  std::optional<std::string> account;
  std::optional<std::string> service;  // for a generic password; the others are for an internet password
  std::optional<std::string> server;
  std::optional<std::string> path;
  std::int64_t port = 0;
  std::string protocol;

  /// What a subcommand cannot do without.
  enum class Required { nothing, kind, kindAndAccount };

  /// Adds the options to a subcommand; conflicting options are wrong usage.
  void addOptions(CLI::App& command, Required required);

  /// Returns a new item, not yet in the keychain.
  NSRef<VXPasswordKeychainItem> makeItem(const NSRefPtr<NSString>& password,
                                         const NSRefPtr<NSString>& label) const;
  /// Returns what the options say, without a label.
  SecAttributes attributes() const;
  /// Returns what finds the matching entries: one query, or one for each kind if the options name none.
  std::vector<SecQuery> queries() const;
};

/// Returns the string of an argument, which has been checked to be UTF-8.
///@{
NSRef<NSString> stringOfArgument(const std::string& argument);
SecText textOfArgument(const std::string& argument);
///@}
/// Accepts arguments that are UTF-8.
extern const CLI::Validator isUTF8;
/// Accepts numbers in the decimal digits 0 to 9, without a sign, spaces or leading zeros.
extern const CLI::Validator isDecimal;
