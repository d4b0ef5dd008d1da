#pragma once

#include <optional>

#include <Security/SecEntry.h>
#include <Security/SecStorage.h>

/// What the four operations mean, the same for every storage: when two entries are the same one, which entry
/// a query stands for, what a change leaves alone. Each runs within a transaction and throws SecFailure,
/// which ends it without a change. Nothing is kept here.

/// Attributes to change, and the secret if it is to change; what is missing stays as it is.
struct SecChanges {
  SecAttributes attributes;
  std::optional<SecSecret> secret;
};

/// Adds `entry`: errSecDuplicateItem when there is one of its identity, errSecDataTooLarge when its secret is
/// larger than 16 MiB.
void secAdd(SecTransaction& transaction, const SecEntry& entry);

/// The oldest entry that `query` matches: errSecItemNotFound when none does.
SecEntry secCopyMatching(SecTransaction& transaction, const SecAttributes& query);

/// Changes the oldest entry that `query` matches: errSecItemNotFound when none does, errSecDuplicateItem when
/// two entries would become one, errSecDataTooLarge as for adding, errSecParam for a change of its class.
void secUpdate(SecTransaction& transaction, const SecAttributes& query, const SecChanges& changes);

/// Removes every entry that `query` matches: errSecItemNotFound when none does.
void secDelete(SecTransaction& transaction, const SecAttributes& query);
