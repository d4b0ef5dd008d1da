#pragma once

#include <Security/SecStorage.h>

#include <optional>
#include <span>
#include <vector>

#include "tool/Message.h"

/// Returns all entries that match any of the queries: those of the first query come first, each query's
/// oldest first. Throws SecFailure.
std::vector<SecRow> matches(SecTransaction& transaction, std::span<const SecQuery> queries,
                            SecSecrets secrets);

/// Does the same in a transaction of its own. Throws Failure.
std::vector<SecRow> matches(SecStorage& storage, std::span<const SecQuery> queries, SecSecrets secrets);

/// Returns the only match or, of several, the one whose identity is exactly the query's. Throws Failure,
/// which lists them, if there are several and none is exact; returns no value if there is none.
std::optional<SecRow> onlyMatch(SecTransaction& transaction, const SecQuery& query, SecSecrets secrets);

/// Returns the entry of exactly this identity, or no value. Throws SecFailure.
std::optional<SecRow> exactMatch(SecTransaction& transaction, const SecAttributes& attributes,
                                 SecSecrets secrets);

/// Runs `work`, which may throw Failure, as one transaction. Throws Failure, with `what`, if that fails.
///@{
void readIn(SecStorage& storage, const Message& what, const SecStorage::Work& work);
void changeIn(SecStorage& storage, const Message& what, const SecStorage::Work& work);
///@}

/// Throws the failure that no entry matches.
[[noreturn]] void failWithoutMatch();
