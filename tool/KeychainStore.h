#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

#include "tool/Subcommands.h"

/// Which store the keychain subcommands act on.
struct KeychainStore {
  // Empty for the user's file, ":memory:" for a store that ends with the process, ":desktop:" for the
  // desktop's credential service.
  std::string place;
  std::optional<int> passphraseDescriptor;
  bool noPrompt = false;

  void addOptions(CLI::App& keychain);

  /// Makes it the process's default store, unlocked if that takes no passphrase or one can be obtained.
  /// Throws Failure if it cannot be opened.
  void open() const;
};

/// Adds `keychain info`, `keychain verify` and `keychain passphrase`.
void addKeychainStore(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store);
