#pragma once

#include "Security/SecFileDatabase.h"
#include "Security/SecFileDirectory.h"

/// What the rows of one store need to be read and written.
struct SecFileContext {
  SecFileDatabase& database;
  const SecFileKeys& keys;
  const SecStoreID& store;
};

/// The line of the directory in a row of bucket, identity, number and stamp.
SecFileLine secLineFrom(const SecFileDatabase::Statement& row);

/// Reads the entry of a line; fails with errSecDecode unless it is the very one that was written for it.
SecEntry secReadEntry(const SecFileContext& context, const SecFileLine& line);

/// Writes an entry and gives its line in the directory.
SecFileLine secWriteEntry(const SecFileContext& context, const SecFileIdentity& identity, std::int64_t number,
                          const SecEntry& entry);
