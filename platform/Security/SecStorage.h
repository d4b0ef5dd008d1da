#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <Security/SecBase.h>
#include <Security/SecEntry.h>

/// One row of a storage: an entry, and the number by which the storage knows it. An older entry has the
/// smaller number.
struct SecRow {
  std::int64_t number = 0;  ///< the same for as long as the row is there
  SecEntry entry;           ///< a copy, with the secret
};

/// What may be asked and changed within one transaction. Every operation answers a status, errSecSuccess
/// when it was done; after any other status the transaction ends without a change.
class SecTransaction {
 public:
  virtual ~SecTransaction() = default;

  /// Hands `visit` the rows that `query` matches (secMatches), oldest first, until it answers false. Nothing
  /// that was ever put into the storage is passed over: a storage that cannot be sure answers errSecDecode.
  virtual OSStatus find(const SecAttributes& query, const std::function<bool(SecRow)>& visit) = 0;

  /// Add a row, change one or take one out. Its number is one that `find` gave in this transaction. In one
  /// that only reads, the answer is errSecReadOnly.
  ///@{
  virtual OSStatus insert(const SecEntry& entry) = 0;
  virtual OSStatus replace(std::int64_t number, const SecEntry& entry) = 0;
  virtual OSStatus remove(std::int64_t number) = 0;
  ///@}
};

/// What a person wants to know of a storage.
struct SecStorageInfo {
  std::string place;        ///< "memory", or the path of a file
  std::string protection;   ///< in a few English words
  std::size_t entries = 0;  ///< how many there are
};

/// A place where entries are kept. Safe from any thread: transactions follow one another.
class SecStorage {
 public:
  /// What a transaction is for.
  enum class Access {
    read,    ///< looking only: a change is errSecReadOnly
    change,  ///< looking and changing
  };
  /// The steps of a transaction; they start no other one in the same storage, and keep none of it.
  using Work = std::function<OSStatus(SecTransaction&)>;

  virtual ~SecStorage() = default;

  /// Runs `work` as one transaction, which is kept exactly when `work` answers errSecSuccess. Answers
  /// the status of `work`, or why the transaction could not be begun or kept.
  virtual OSStatus transact(Access access, const Work& work) = 0;

  /// Tells what this storage is; after a status other than errSecSuccess, only as far as it could.
  virtual OSStatus copyInfo(SecStorageInfo& info) = 0;
};
