#pragma once

#include <optional>

#include <Security/SecBase.h>
#include <Security/SecEntry.h>
#include <Security/SecStorage.h>

/// What the four operations mean, the same for every storage: when two entries are one, which entry a
/// query stands for, what a change leaves alone. Nothing is kept here; each runs within a transaction that
/// ends without a change unless it answers errSecSuccess.

/// Attributes to change, and the secret if it is to change; what is absent stays as it is.
struct SecChanges {
  SecAttributes attributes;
  std::optional<SecSecret> secret;
};

/// Adds `entry`: errSecDuplicateItem when one of its identity is there, errSecDataTooLarge when its secret
/// is larger than 16 MiB.
OSStatus secAdd(SecTransaction& transaction, const SecEntry& entry);

/// Gives the oldest entry that `query` matches: errSecItemNotFound, and `found` untouched, when none does.
OSStatus secCopyMatching(SecTransaction& transaction, const SecAttributes& query, SecEntry& found);

/// Changes the oldest entry that `query` matches: errSecItemNotFound when none does, errSecDuplicateItem when
/// two entries would become one, errSecDataTooLarge as for adding, errSecParam for a change of its class.
OSStatus secUpdate(SecTransaction& transaction, const SecAttributes& query, const SecChanges& changes);

/// Removes every entry that `query` matches: errSecItemNotFound when none does.
OSStatus secDelete(SecTransaction& transaction, const SecAttributes& query);
