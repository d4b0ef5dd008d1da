#pragma once

#include <Security/FileStore/SecFileKeyPair.h>
#include <Security/FileStore/SecFileKeys.h>
#include <Security/SecFileProtection.h>

/// One way to open a store. A slot's secret (the key in a key file, a passphrase) gives the slot's key, and
/// that opens the data key of the store. It also opens the private half of a key pair: who changes the data
/// key without the slot's secret seals the new one to the public half. That is in the file only encrypted
/// under the data key, so that nobody without a key can seal one of their own to it.
struct SecFileSlot {
  SecFileProtection protection = SecFileProtection::keyFile;
  SecCost cost;  ///< of a passphrase
  std::uint32_t flags = 0;
  SecTag number{};      ///< random; names the key file, and never changes
  SecBytes pair;        ///< both halves under the slot's key
  SecBytes dataKey;     ///< under the slot's key or, if the slot is stale, sealed to the pair
  SecBytes publicHalf;  ///< under the data key
};

/// The flag of a slot that got its data key without its secret. Who could open the store before may know its
/// public half, so it gets a new pair as soon as its secret is at hand. Other flags are kept.
constexpr std::uint32_t secSlotIsStale = 1;

/// The size of a slot as bytes.
constexpr std::size_t secSlotSize = 8 + sizeof(SecTag) + (SecKeyPair::size + secBoxOverhead) +
                                    (secKeySize + secSealedOverhead) +
                                    (sizeof(SecPublicKey) + secBoxOverhead);

/// Returns a slot with a new number, which has no pair yet.
SecFileSlot secMakeSlot(SecFileProtection protection);
/// Derives the slot's key from its secret. Expensive for a passphrase.
SecSecret secDeriveSlotKey(const SecFileSlot& slot, SecView secret);

/// Opens the slot and returns the store's data key; fails with errSecAuthFailed for the wrong slot key, and
/// with errSecDecode if the data key in it is not the one of number `keyID`.
SecSecret secOpenSlot(const SecFileSlot& slot, SecView slotKey, const SecTag& keyID);
/// Gives the slot a new pair, and the data key.
void secRenewSlot(SecFileSlot& slot, SecView slotKey, const SecFileKeys& keys);
/// Seals another data key to the slot's pair, whose public half the former keys open; the slot is stale then.
void secResealSlot(SecFileSlot& slot, const SecFileKeys& former, const SecFileKeys& keys);

/// A slot as secSlotSize bytes. Reading fails with errSecDecode for a cost outside of what any version would
/// have chosen.
///@{
SecByteWriter& secPutSlot(SecByteWriter& writer, const SecFileSlot& slot);
SecFileSlot secTakeSlot(SecByteReader& reader);
///@}
