#pragma once

#include <Security/SecStorage.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

/// Which store the keychain subcommands act on. Opening throws Failure if it is not possible.
struct KeychainStore {
  // Empty for the user's file, ":memory:" for a store that ends with the process, ":desktop:" for the
  // desktop's credential service.
  std::string place;
  std::optional<int> passphraseDescriptor;
  bool noPrompt = false;
  bool allowSharedFolder = false;

  /// Accepts what may be a place.
  static const CLI::Validator isPlace;

  void addOptions(CLI::App& keychain);

  bool isInMemory() const;
  bool isOnDesktop() const;
  /// Opens it, unlocked if that takes no passphrase.
  std::shared_ptr<SecStorage> openAsItIs() const;
  /// Opens it, unlocked if that takes no passphrase or one can be obtained.
  std::shared_ptr<SecStorage> openUnlocked() const;
  /// Does the same, and makes it the process's default store.
  std::shared_ptr<SecStorage> open() const;
};
