#pragma once

#include <Security/SecEntry.h>

/// Returns the attributes that distinguish an entry from all others, normalised: the label is left out, and
/// an internet password always has a path and a port, since a missing path is the same as an empty one and a
/// missing port the same as port 0. Two entries are the same exactly when their identities are equal.
SecAttributes secIdentity(const SecAttributes& attributes);

/// Returns whether every identity attribute that `query` has equals the entry's; one that it lacks matches
/// anything.
bool secMatches(const SecAttributes& query, const SecAttributes& entry);
