#pragma once

#include <string>

#include <Security/FileStore/SecFileKeys.h>
#include <Security/SecFileProtection.h>

/// The one slot of a store of format 1: its data key under the key that a key file or a passphrase gives.
struct SecFormat1Slot {
  SecFileProtection protection = SecFileProtection::keyFile;
  SecCost cost;
  SecTag salt{};
  SecBytes wrapped;
};

/// The keys of a store of format 1, derived from its data key.
struct SecFormat1Keys {
  SecSecret item;
  SecSecret seal;
};

/// Reads a slot; fails with errSecDecode if it is damaged.
SecFormat1Slot secDecodeFormat1Slot(SecView bytes, const SecStoreID& store);
/// Opens the slot with its secret; fails with errSecAuthFailed for the wrong one.
SecFormat1Keys secOpenFormat1Slot(const SecFormat1Slot& slot, SecView secret, const SecStoreID& store);

/// The key file of format 1 is named by the store and holds 32 bytes.
std::string secFormat1KeyFileName(const SecStoreID& store);
