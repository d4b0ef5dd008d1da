#pragma once

#include <cstdint>

#include <Security/FileStore/SecFileCrypto.h>

/// The random number that identifies a store.
using SecStoreID = std::array<std::byte, 16>;

/// The keys that an unlocked store works with, each for one purpose, all derived from its data key.
/// Immutable, so it may be read from any thread.
class SecFileKeys {
 public:
  /// New random keys.
  SecFileKeys();
  /// The keys of a store; `id` is the public number of the data key.
  SecFileKeys(SecSecret dataKey, const SecTag& id);

  const SecTag& id() const { return id_; }
  SecView data() const { return data_.bytes(); }
  SecView item() const { return derived(0); }
  SecView index() const { return derived(1); }
  SecView seal() const { return derived(2); }
  SecView slots() const { return derived(3); }

 private:
  SecView derived(std::size_t place) const {
    return derived_.bytes().subspan(place * secKeySize, secKeySize);
  }

  SecTag id_;
  SecSecret data_;
  SecSecret derived_;
};
