#pragma once

#include <map>
#include <set>

#include <Security/FileStore/SecFileEntry.h>
#include <Security/FileStore/SecFileSeal.h>
#include <Security/SecStorage.h>

/// The operations of one transaction on an unlocked store. Every result is first checked against the seal,
/// one bucket at a time: an entry that was removed, added or put back behind the store's back fails with
/// errSecDecode, whether it was asked for or passed over. Used by one thread.
class SecFileTransaction final : public SecTransaction {
 public:
  /// `seal` was verified in the same transaction of the database, and is changed by changes.
  SecFileTransaction(const SecFileContext& context, SecFileSeal& seal, SecStorage::Access access);

  void find(const SecQuery& query, SecSecrets secrets, const std::function<bool(SecRow)>& visit) override;
  void insert(const SecEntry& entry) override;
  void replace(std::int64_t number, const SecAttributes& attributes,
               const std::optional<SecSecret>& secret) override;
  void remove(std::int64_t number) override;

  /// Returns whether there is anything to write; fails with errSecParam if a change was begun that did not
  /// end.
  bool hasChanged() const;
  /// Writes the seal and reads everything that was written again; to be called once, before the commit.
  void finish();

 private:
  template <class Action>
  void change(Action&& action);
  SecFileBucket& bucket(std::uint8_t number);
  std::vector<SecFileLine> lines();
  std::vector<SecFileLine> candidates(const SecFileQuery& query);
  SecFileEntryPlace placeOf(std::int64_t number) const;
  void requireFree(const SecFileIdentity& identity);
  void put(std::int64_t number, const SecFileEntryHead& head, SecView content);
  void unlist(const SecFileLine& line);
  void readBack();
  SecFileLine known(std::int64_t number) const;

  const SecFileContext context_;
  SecFileSeal& seal_;
  SecStorage::Access access_;
  std::map<std::uint8_t, SecFileBucket> buckets_;  // those that were read and believed
  std::map<std::int64_t, SecFileLine> known_;      // rows that find passed on
  std::map<std::int64_t, SecFileLine> put_;        // rows that this transaction wrote
  std::set<std::uint8_t> touched_;                 // buckets that it changed
  int begun_ = 0;                                  // changes, and those that ended
  int done_ = 0;
};
