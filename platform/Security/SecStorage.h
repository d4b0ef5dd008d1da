#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <Foundation/NSExport.h>
#include <Security/SecStatus.h>

#include <Security/SecEntry.h>

/// One row of a storage: an entry, and the number by which the storage knows it. An older entry has a smaller
/// number.
struct SecRow {
  std::int64_t number = 0;  ///< unchanged for as long as the row exists
  SecEntry entry;           ///< a copy, including the secret
};

/// The operations of one transaction. Each fails by throwing SecFailure, which the caller must let pass: the
/// transaction then ends without a change.
class NS_EXPORT SecTransaction {
 public:
  virtual ~SecTransaction() = default;

  /// Passes `visit` the rows that `query` matches (secMatches), oldest first, until `visit` returns false. No
  /// row is ever left out silently: a storage that cannot be sure fails with errSecDecode.
  virtual void find(const SecAttributes& query, const std::function<bool(SecRow)>& visit) = 0;

  /// Adds a row, replaces one or removes one; the number is one that `find` reported in this transaction.
  /// Fails with errSecDuplicateItem if two rows would have the same identity (secIdentity), and with
  /// errSecReadOnly in a transaction that only reads.
  ///@{
  virtual void insert(const SecEntry& entry) = 0;
  virtual void replace(std::int64_t number, const SecEntry& entry) = 0;
  virtual void remove(std::int64_t number) = 0;
  ///@}
};

/// A description of a storage, for people.
struct SecStorageInfo {
  std::string place;        ///< "memory", or the path of a file
  std::string protection;   ///< in a few English words
  std::size_t entries = 0;  ///< how many entries there are
};

/// A place where entries are kept. Safe from any thread: transactions run one after another.
class NS_EXPORT SecStorage {
 public:
  /// What a transaction is for.
  enum class Access {
    read,    ///< only reading: a change fails with errSecReadOnly
    change,  ///< reading and changing
  };
  /// The steps of a transaction. They must not start another transaction in the same storage, nor keep a
  /// reference to this one; to give up, they throw SecFailure.
  using Work = std::function<void(SecTransaction&)>;

  virtual ~SecStorage() = default;

  /// Runs `work` as one transaction: committed when `work` returns, rolled back when it throws. Returns
  /// errSecSuccess, the status of the failure that `work` threw, or the reason why the transaction could not
  /// be begun or committed.
  virtual OSStatus transact(Access access, const Work& work) = 0;

  /// Describes this storage. After a status other than errSecSuccess, `info` may be incomplete.
  virtual OSStatus copyInfo(SecStorageInfo& info) = 0;
};
