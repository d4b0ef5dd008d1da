#pragma once

#include "tool/KeychainStore.h"
#include "tool/Subcommands.h"

// The subcommands of `keychain` that concern a store as a whole.

/// Adds `info` and `verify`.
void addKeychainInfo(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store);
/// Adds `passphrase` and `rotate`.
void addKeychainProtection(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store);
/// Adds `slots`, with what shows and with what changes them.
void addKeychainSlots(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store);
void addKeychainSlotChanges(CLI::App& slots, Action& action, const std::shared_ptr<KeychainStore>& store);
/// Adds `salvage` and `accept`.
void addKeychainRepair(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store);
