#pragma once

#include <optional>
#include <vector>

#include <Security/SecStorage.h>

/// @file
/// The four operations, the same for every storage: which entries a query stands for, in which order, and
/// what a change leaves alone. SecIdentity.h says when two entries are the same. Each operation runs within a
/// transaction and fails by throwing SecFailure, which ends the transaction without a change. No state is
/// kept here.
///
/// Where several entries match a query, the one whose identity is exactly the query's comes first, then the
/// oldest. Only look-ups that ask for secrets read any.

/// The attributes to change, and the secret if it is to change; whatever has no value stays as it is.
struct SecChanges {
  SecAttributes attributes;
  std::optional<SecSecret> secret;
};

/// Adds `entry`. Fails with errSecDuplicateItem if there is an entry of the same identity, and with
/// errSecDataTooLarge if its secret is larger than 16 MiB.
void secAdd(SecTransaction& transaction, const SecEntry& entry);

/// Returns the first `limit` entries that match `query`. Fails with errSecItemNotFound if none does.
std::vector<SecEntry> secCopyMatching(SecTransaction& transaction, const SecQuery& query, SecSecrets secrets,
                                      std::size_t limit);

/// Changes the first entry that matches `query`. Fails with errSecItemNotFound if none does, with
/// errSecDuplicateItem if two entries would become the same, with errSecDataTooLarge as secAdd does, and with
/// errSecParam if the class would change.
void secUpdate(SecTransaction& transaction, const SecQuery& query, const SecChanges& changes);

/// Removes every entry that matches `query`. Fails with errSecItemNotFound if none does.
void secDelete(SecTransaction& transaction, const SecQuery& query);
