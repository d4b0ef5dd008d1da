#pragma once

#include <cstdint>
#include <optional>

#include <Security/FileStore/SecFileBytes.h>
#include <Security/SecStorage.h>

/// What an entry is found by: a keyed tag of each part of its identity, by which equal parts are found and
/// nothing else.
struct SecFileIdentity {
  using Tag = std::array<std::byte, 8>;
  Tag account{};
  Tag site{};  ///< the service or the server
  Tag rest{};  ///< path, port and protocol

  friend bool operator==(const SecFileIdentity&, const SecFileIdentity&) = default;
  /// The number of the bucket that lists the entry.
  std::uint8_t bucket() const;
};

SecFileIdentity secFileIdentity(SecView indexKey, const SecAttributes& attributes);

/// The parts of an identity that a query names; a part that it lacks matches anything.
class SecFileQuery {
 public:
  SecFileQuery(SecView indexKey, const SecQuery& query);

  /// Returns the bucket that lists all matches, or no value if every bucket may.
  std::optional<std::uint8_t> bucket() const;
  /// Returns false only for an entry that the query cannot match.
  bool mayMatch(const SecFileIdentity& identity) const;

 private:
  SecFileIdentity identity_;
  bool account_;
  bool site_;
  bool rest_;
};
