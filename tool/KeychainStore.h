#pragma once

#include <Security/SecDesktopStorage.h>
#include <Security/SecFileStorage.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

/// Which store the keychain subcommands act on. Opening throws Failure if it is not possible.
struct KeychainStore {
  using Missing = SecFileStorage::Missing;

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
  /// Returns what the desktop's credential service may do.
  SecDesktopOptions desktopOptions() const;
  /// Opens it, unlocked if that takes no passphrase; returns null if it is the user's own and is missing.
  std::shared_ptr<SecStorage> openAsItIs() const;
  /// Opens it, unlocked if that takes no passphrase or one can be obtained. A file that is missing is made or
  /// refused, but the user's own, if it is not to be made, is an empty store.
  std::shared_ptr<SecStorage> openUnlocked(Missing missing) const;
  /// Does the same, and makes it the process's default store.
  std::shared_ptr<SecStorage> open(Missing missing = Missing::make) const;
};
