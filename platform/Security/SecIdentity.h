#pragma once

#include <Security/SecStorage.h>

/// Returns the attributes that distinguish an entry from all others, normalised: the label is left out, and
/// an internet password always has a path and a port, since a missing path is the same as an empty one and a
/// missing port the same as port 0. Two entries are the same exactly when their identities are equal. Safe on
/// any thread.
NS_EXPORT SecAttributes secIdentity(const SecAttributes& attributes);

/// Returns whether every identity attribute that the query has equals the entry's, where one that it lacks
/// matches anything; or, if the query says so, whether the two identities are equal. Safe on any thread.
NS_EXPORT bool secMatches(const SecQuery& query, const SecAttributes& entry);
