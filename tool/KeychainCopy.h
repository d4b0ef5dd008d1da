#pragma once

#include "tool/KeychainStore.h"
#include "tool/Subcommands.h"

/// Adds `keychain copy`; `store` is where it copies from or to unless its options say so.
void addKeychainCopy(CLI::App& keychain, Action& action, const std::shared_ptr<KeychainStore>& store);
