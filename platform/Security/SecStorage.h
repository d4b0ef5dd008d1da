#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <Security/SecBase.h>
#include <Security/SecEntry.h>

/// One row of a storage: an entry, and the number by which the storage knows it. An older entry has the
/// smaller number.
struct SecRow {
  std::int64_t number = 0;
  SecEntry entry;
};

/// What may be asked and changed within one transaction. Every operation answers a status, errSecSuccess
/// when it was done; after any other status the transaction ends without a change.
class SecTransaction {
 public:
  virtual ~SecTransaction() = default;

  /// Hands `visit` the rows that `query` matches, oldest first, until it answers false. An identity
  /// attribute that the query lacks matches anything; its label is not looked at.
  virtual OSStatus find(const SecAttributes& query, const std::function<bool(SecRow)>& visit) = 0;

  /// Called before "not found" is believed: errSecSuccess when the storage is sure that it holds all that
  /// was ever put into it.
  virtual OSStatus confirmMiss() = 0;

  virtual OSStatus insert(const SecEntry& entry) = 0;
  virtual OSStatus replace(std::int64_t number, const SecEntry& entry) = 0;
  virtual OSStatus remove(std::int64_t number) = 0;
};

/// A place where entries are kept. Safe from any thread: transactions follow one another.
class SecStorage {
 public:
  enum class Access { read, change };
  using Work = std::function<OSStatus(SecTransaction&)>;

  virtual ~SecStorage() = default;

  /// Runs `work` as one transaction, which is kept exactly when `work` answers errSecSuccess. Answers
  /// the status of `work`, or why the transaction could not be begun or kept.
  virtual OSStatus transact(Access access, const Work& work) = 0;
};
