#pragma once

#include <Security/SecEntry.h>

/// What tells an entry from all others, in one spelling: the label is left out, and an internet password
/// always holds a path and a port, since none is the same as an empty path and as port 0. Two entries are
/// the same one exactly when their identities are equal.
SecAttributes secIdentity(const SecAttributes& attributes);

/// Whether every identity attribute that `query` holds equals the entry's; one that it lacks matches
/// anything.
bool secMatches(const SecAttributes& query, const SecAttributes& entry);
