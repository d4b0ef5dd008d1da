#pragma once

#include <vector>

#include <Security/FileStore/SecFileContext.h>
#include <Security/FileStore/SecFileIndex.h>

/// Where an entry is: its identity, its record, its place in the order of adding, and the tag of what was
/// written, so that a former version of the entry is not taken for it.
struct SecFileLine {
  SecFileIdentity identity;
  std::int64_t number = 0;
  std::int64_t order = 0;
  SecTag tag{};
};

/// The lines of the entries whose identities select the bucket. Kept as one encrypted record, whose tag the
/// seal has: all zeros for a bucket without lines, which has no record.
struct SecFileBucket {
  std::vector<SecFileLine> lines;
  SecTag tag{};
};

/// Decrypts the content of a bucket's record; fails with errSecDecode if it is not this bucket of this store.
SecFileBucket secOpenBucket(const SecFileKeys& keys, const SecStoreID& store, std::uint8_t number,
                            SecView content);
/// Reads a bucket.
SecFileBucket secReadBucket(const SecFileContext& context, std::uint8_t number);
/// Writes a bucket, or removes its record, and brings its tag up to date.
void secWriteBucket(const SecFileContext& context, std::uint8_t number, SecFileBucket& bucket);
