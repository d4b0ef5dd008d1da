#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <vector>

#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileKeys.h>
#include <Security/SecStorage.h>

/// What an entry is found by: a keyed tag of each part of its identity, so that equal parts can be told
/// and nothing else.
struct SecFileIdentity {
  SecTag account{};
  SecTag site{};  // the service or the server
  SecTag rest{};  // path, port and protocol

  friend auto operator<=>(const SecFileIdentity&, const SecFileIdentity&) = default;
  std::uint8_t bucket() const {
    return static_cast<std::uint8_t>(std::to_integer<unsigned>(account[0] ^ site[0]) % secBucketCount);
  }
};

SecFileIdentity secFileIdentity(SecView indexKey, const SecAttributes& attributes);
SecByteWriter& secPutIdentity(SecByteWriter& writer, const SecFileIdentity& identity);

/// The parts of an identity that a query names; what it lacks matches anything.
class SecFileQuery {
 public:
  SecFileQuery(SecView indexKey, const SecQuery& query);

  /// The one bucket that holds all matches, when there is one.
  std::optional<std::uint8_t> bucket() const;
  /// False only for an entry that the query cannot match.
  bool mayMatch(const SecFileIdentity& identity) const;

 private:
  SecFileIdentity identity_;
  bool account_;
  bool site_;
  bool rest_;
};

/// A line of the directory: which row holds the entry of this identity, and how that row ends.
struct SecFileLine {
  SecFileIdentity identity;
  std::int64_t number = 0;
  SecTag stamp{};
};

using SecFileBucket = std::vector<SecFileLine>;

/// The lines of a bucket as bytes; reading fails with errSecDecode for what is no row of lines.
SecBytes secEncodeBucket(const SecFileBucket& lines);
SecFileBucket secDecodeBucket(SecView bytes);

/// The keyed sum of a bucket's bytes; all zero for an empty one.
SecTag secBucketSum(SecView sealKey, std::uint8_t bucket, SecView bytes);

/// What holds a store together: the number that the next entry gets, how many there are, and the sum of
/// every bucket, all under one keyed sum of its own.
struct SecFileSeal {
  std::int64_t next = 1;
  std::uint64_t count = 0;
  std::array<SecTag, secBucketCount> sums{};
};

SecBytes secEncodeSeal(const SecFileSeal& seal, SecView sealKey, const SecStoreID& store);
/// Fails with errSecDecode unless `bytes` are a seal that this key has made for this store.
SecFileSeal secDecodeSeal(SecView bytes, SecView sealKey, const SecStoreID& store);
