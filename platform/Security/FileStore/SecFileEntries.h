#pragma once

#include <Security/FileStore/SecFileDatabase.h>
#include <Security/FileStore/SecFileIndex.h>

/// What the rows of one store need to be read and written.
struct SecFileContext {
  SecFileDatabase& database;
  const SecFileKeys& keys;
  const SecStoreID& store;
};

/// The bytes of a bucket of the directory, none when nothing was ever in it.
SecBytes secReadBucket(const SecFileContext& context, std::uint8_t bucket);
void secWriteBucket(const SecFileContext& context, std::uint8_t bucket, SecView bytes);

/// Reads the entry of a line; fails with errSecDecode unless it is the very one that was written for it.
SecEntry secReadEntry(const SecFileContext& context, const SecFileLine& line);

void secRemoveEntry(const SecFileContext& context, std::int64_t number);

/// Writes an entry and gives its line in the directory.
SecFileLine secWriteEntry(const SecFileContext& context, const SecFileIdentity& identity, std::int64_t number,
                          const SecEntry& entry);

/// How many entries there are, as far as the file says.
std::uint64_t secCountEntries(SecFileDatabase& database);
