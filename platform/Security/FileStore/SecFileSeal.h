#pragma once

#include <Security/FileStore/SecFileBucket.h>
#include <Security/FileStore/SecFileFormat.h>

/// What holds a store together, encrypted and authenticated as one record: whatever the seal covers cannot be
/// removed, added or put back without the keys.
struct SecFileSeal {
  std::uint64_t changes = 0;  ///< how many transactions have changed the store
  std::int64_t next = 1;      ///< the place that the next entry gets in the order of adding
  std::uint64_t entries = 0;  ///< how many there are
  std::uint64_t size = 0;     ///< of all entries' records, in bytes
  SecDigest header{};         ///< the digest of the header
  SecSecret noteKey;          ///< of the note about the count of changes; survives a change of keys
  std::array<SecTag, secBucketCount> buckets{};
};

/// The content of the seal's record, and its reading, which fails with errSecDecode unless these keys made it
/// for this store.
///@{
SecBytes secEncodeSeal(const SecFileSeal& seal, const SecFileKeys& keys, const SecStoreID& store);
SecFileSeal secDecodeSeal(SecView content, const SecFileKeys& keys, const SecStoreID& store);
///@}

SecFileSeal secReadSeal(const SecFileContext& context);
void secWriteSeal(const SecFileContext& context, const SecFileSeal& seal);

/// Reads a bucket; fails with errSecDecode unless it is the one that the seal covers.
SecFileBucket secBelieveBucket(const SecFileContext& context, const SecFileSeal& seal, std::uint8_t number);
