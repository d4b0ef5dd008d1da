#pragma once

#include <cstdint>

#include <Security/FileStore/SecFileCrypto.h>
#include <Security/SecFileProtection.h>

/// The number that names a store, chosen at random when it is made.
using SecStoreID = std::array<std::byte, 16>;

/// The keys that an unlocked store works with, each for one purpose, all made from its data key.
/// Not changed once made, so it may be read from any thread.
class SecFileKeys {
 public:
  SecFileKeys(SecSecret dataKey, const SecStoreID& store);

  SecView data() const { return data_.bytes(); }
  SecView item() const { return item_.bytes(); }
  SecView index() const { return index_.bytes(); }
  SecView seal() const { return seal_.bytes(); }

 private:
  SecSecret data_;
  SecSecret item_;
  SecSecret index_;
  SecSecret seal_;
};

/// The data key of a store under the key that a key file or a passphrase gives.
struct SecFileSlot {
  SecFileProtection protection = SecFileProtection::keyFile;
  SecCost cost;  // of a passphrase
  SecTag salt{};
  SecBytes wrapped;
};

/// Wraps a data key. The credential is the content of the key file or the passphrase.
SecFileSlot secWrapKey(SecFileProtection protection, SecView credential, const SecStoreID& store,
                       SecView dataKey);

/// Unwraps the data key; fails with errSecAuthFailed for the wrong credential.
SecSecret secUnwrapKey(const SecFileSlot& slot, SecView credential, const SecStoreID& store);

/// A slot as bytes that end with their hash: what is damaged is then told from what the wrong key opens.
SecBytes secEncodeSlot(const SecFileSlot& slot, const SecStoreID& store);

/// Reads what secEncodeSlot wrote; fails with errSecDecode for anything else, and for parameters that ask
/// for less or more work than this version would ever have given.
SecFileSlot secDecodeSlot(SecView bytes, const SecStoreID& store);
