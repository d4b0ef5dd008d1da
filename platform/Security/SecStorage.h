#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include <Foundation/NSExport.h>
#include <Security/SecStatus.h>

#include <Security/SecEntry.h>

/// What a look-up asks for.
struct SecQuery {
  SecAttributes attributes;  ///< each that has a value narrows the look-up, except the label
  bool exactly = false;      ///< whether the whole identity (secIdentity) must match, missing values included
};

/// Whether a look-up reads the secrets of the rows that it finds.
enum class SecSecrets {
  skip,  ///< rows come with an empty secret
  read,  ///< rows come with their secret
};

/// One row of a storage: an entry, and the number by which the storage knows it within one transaction.
struct SecRow {
  std::int64_t number = 0;  ///< of the row, within the transaction
  SecEntry entry;           ///< a copy; the secret is empty where secrets are skipped
};

/// The operations of one transaction. Each fails by throwing SecFailure, which the caller must let pass: the
/// transaction then ends without a change.
class NS_EXPORT SecTransaction {
 public:
  virtual ~SecTransaction() = default;

  /// Passes `visit` the rows that match `query` (secMatches), oldest first, until it returns false. No row is
  /// ever left out silently: a storage that cannot be sure fails with errSecDecode.
  virtual void find(const SecQuery& query, SecSecrets secrets, const std::function<bool(SecRow)>& visit) = 0;

  /// Adds a row, replaces one or removes one; the number is one that `find` reported in this transaction. A
  /// replacement without a secret keeps the present one, without reading it. Fails with errSecDuplicateItem
  /// if two rows would have the same identity (secIdentity), and with errSecReadOnly in a transaction that
  /// only reads.
  ///@{
  virtual void insert(const SecEntry& entry) = 0;
  virtual void replace(std::int64_t number, const SecAttributes& attributes,
                       const std::optional<SecSecret>& secret) = 0;
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

  /// Sets how long a call waits for another process before it fails with errSecBusy: 5 seconds unless set,
  /// and not at all for 0. A storage that no other process shares ignores it.
  virtual void setWaitLimit(std::chrono::milliseconds limit) { static_cast<void>(limit); }

  /// Describes this storage. After a status other than errSecSuccess, `info` may be incomplete.
  virtual OSStatus copyInfo(SecStorageInfo& info) = 0;
};
