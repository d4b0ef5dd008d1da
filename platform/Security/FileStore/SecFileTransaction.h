#pragma once

#include <map>
#include <set>

#include <Security/FileStore/SecFileEntries.h>
#include <Security/SecStorage.h>

/// The operations of one transaction on an unlocked store file. Every answer is checked against the seal
/// first, one bucket of the directory at a time: an entry that was removed, added or put back behind the
/// store's back gives errSecDecode, whether it was asked for or passed over. Used by one thread.
class SecFileTransaction final : public SecTransaction {
 public:
  /// Fails with errSecDecode when the seal does not hold.
  SecFileTransaction(const SecFileContext& context, SecStorage::Access access);

  void find(const SecQuery& query, SecSecrets secrets, const std::function<bool(SecRow)>& visit) override;
  void insert(const SecEntry& entry) override;
  void replace(std::int64_t number, const SecAttributes& attributes,
               const std::optional<SecSecret>& secret) override;
  void remove(std::int64_t number) override;

  /// Brings the seal up to date; the last thing to do before the transaction is committed. Fails with
  /// errSecParam when a change was begun that did not end.
  void finish();
  /// Checks every entry and all that the file holds; fails with errSecDecode.
  void verify();

 private:
  template <class Action>
  void change(Action&& action);
  SecFileBucket& bucket(std::uint8_t number);
  void loadAll();
  SecFileBucket candidates(const SecFileQuery& query);
  void requireFree(const SecFileIdentity& identity);
  void put(const SecFileIdentity& identity, std::int64_t number, const SecEntry& entry);
  void drop(const SecFileIdentity& identity);
  void write(std::uint8_t number);
  void readBack();
  SecFileBucket believe(std::uint8_t number, SecView bytes) const;
  SecFileLine known(std::int64_t number) const;

  const SecFileContext& context_;
  SecStorage::Access access_;
  SecFileSeal seal_;
  std::map<std::uint8_t, SecFileBucket> buckets_;  // those that were read and believed
  std::map<std::int64_t, SecFileLine> known_;      // rows that find gave
  std::map<std::int64_t, SecFileLine> put_;        // rows that this transaction wrote
  std::set<std::uint8_t> written_;                 // buckets that it wrote
  int begun_ = 0;                                  // changes, and those that came to their end
  int done_ = 0;
};
