#pragma once

#include <Foundation/NSData.h>
#include <Security/SecFileStorage.h>

#include <memory>
#include <string>

#include "tool/KeychainStore.h"
#include "tool/Message.h"

// What the subcommands do with stores in a file. Each throws Failure if it cannot be done.

/// Returns where the store is; fails for a store that is not in a file.
SecFilePlace placeOf(const KeychainStore& store);
std::unique_ptr<SecFileStorage> openStoreFile(const KeychainStore& store, SecFileStorage::Missing missing);
/// Opens a store that exists; returns null if it is the user's own and is missing.
std::unique_ptr<SecFileStorage> findStoreFile(const KeychainStore& store);
SecFileInfo infoOf(SecFileStorage& file);

/// Reads a passphrase from the descriptor if one was named, otherwise asks at the terminal; returns nil if
/// there is neither, or if it may not ask.
NSRefPtr<NSData> readPassphrase(const KeychainStore& store, const Message& question);
/// Reads one that is to be set, at the terminal twice; fails if there is none.
NSRef<NSData> readNewPassphrase(const KeychainStore& store);
/// Unlocks a store that has a passphrase, if it is locked and the passphrase can be obtained.
void unlock(SecFileStorage& file, const KeychainStore& store);
/// Opens an existing store and unlocks it in the same way.
std::unique_ptr<SecFileStorage> openForUpkeep(const KeychainStore& store);
