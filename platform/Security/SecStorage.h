#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <Foundation/NSExport.h>
#include <Security/SecStatus.h>

#include <Security/SecEntry.h>

/// One row of a storage: an entry, and the number by which the storage knows it. An older entry has the
/// smaller number.
struct SecRow {
  std::int64_t number = 0;  ///< the same for as long as the row is there
  SecEntry entry;           ///< a copy, with the secret
};

/// The operations of one transaction. Each throws SecFailure when it fails, and must be let through: the
/// transaction then ends without a change.
class NS_EXPORT SecTransaction {
 public:
  virtual ~SecTransaction() = default;

  /// Passes `visit` the rows that `query` matches (secMatches), oldest first, until it returns false. No row
  /// is ever left out silently: a storage that cannot be sure fails with errSecDecode.
  virtual void find(const SecAttributes& query, const std::function<bool(SecRow)>& visit) = 0;

  /// Adds a row, replaces one or removes one; the number is one that `find` gave in this transaction. Fails
  /// with errSecDuplicateItem where two rows would have one identity (secIdentity), and with errSecReadOnly
  /// in a transaction that only reads.
  ///@{
  virtual void insert(const SecEntry& entry) = 0;
  virtual void replace(std::int64_t number, const SecEntry& entry) = 0;
  virtual void remove(std::int64_t number) = 0;
  ///@}
};

/// What a person wants to know of a storage.
struct SecStorageInfo {
  std::string place;        ///< "memory", or the path of a file
  std::string protection;   ///< in a few English words
  std::size_t entries = 0;  ///< how many there are
};

/// A place where entries are kept. Safe from any thread: transactions follow one another.
class NS_EXPORT SecStorage {
 public:
  /// What a transaction is for.
  enum class Access {
    read,    ///< looking only: a change is errSecReadOnly
    change,  ///< looking and changing
  };
  /// The steps of a transaction. They start no other transaction in the same storage and keep no reference to
  /// this one; to give up, they throw SecFailure.
  using Work = std::function<void(SecTransaction&)>;

  virtual ~SecStorage() = default;

  /// Runs `work` as one transaction, which is kept exactly when `work` returns. Returns errSecSuccess, the
  /// status of the failure that `work` threw, or why the transaction could not be begun or kept.
  virtual OSStatus transact(Access access, const Work& work) = 0;

  /// Describes this storage; after a status other than errSecSuccess `info` is filled in only in part.
  virtual OSStatus copyInfo(SecStorageInfo& info) = 0;
};
