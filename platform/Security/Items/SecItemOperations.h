#pragma once

#include <optional>

#include <Security/SecEntry.h>
#include <Security/SecStorage.h>

/// @file
/// The four operations, the same for every storage: which entry a query stands for, what a change leaves
/// alone. SecIdentity.h says when two entries are the same. Each operation runs within a transaction and
/// fails by throwing SecFailure, which ends the transaction without a change. No state is kept here.

/// The attributes to change, and the secret if it is to change; whatever has no value stays as it is.
struct SecChanges {
  SecAttributes attributes;
  std::optional<SecSecret> secret;
};

/// Adds `entry`. Fails with errSecDuplicateItem if there is an entry of the same identity, and with
/// errSecDataTooLarge if its secret is larger than 16 MiB.
void secAdd(SecTransaction& transaction, const SecEntry& entry);

/// Returns the oldest entry that `query` matches. Fails with errSecItemNotFound if it matches none.
SecEntry secCopyMatching(SecTransaction& transaction, const SecAttributes& query);

/// Changes the oldest entry that `query` matches. Fails with errSecItemNotFound if it matches none, with
/// errSecDuplicateItem if two entries would become the same, with errSecDataTooLarge as secAdd does, and with
/// errSecParam if the class would change.
void secUpdate(SecTransaction& transaction, const SecAttributes& query, const SecChanges& changes);

/// Removes every entry that `query` matches. Fails with errSecItemNotFound if it matches none.
void secDelete(SecTransaction& transaction, const SecAttributes& query);
