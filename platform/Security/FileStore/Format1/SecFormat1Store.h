#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <Security/FileStore/Format1/SecFormat1Keys.h>
#include <Security/FileStore/SecFileDatabase.h>
#include <Security/SecStorage.h>

/// A store of format 1, which is only read: its first change migrates it. There is no use of its index; each
/// look-up checks the whole directory. All operations are called within a transaction of its database, and
/// fail with errSecDecode for damage. Used by one thread.
class SecFormat1Store {
 public:
  /// Reads what is known of the locked store.
  explicit SecFormat1Store(SecFileDatabase& database);

  SecFileProtection protection() const { return slot_.protection; }
  std::string keyFileName() const { return secFormat1KeyFileName(id_); }

  /// Opens the slot and keeps its secret, which a migration needs; fails with errSecAuthFailed.
  void unlock(SecSecret secret);
  bool isLocked() const { return !keys_.has_value(); }
  /// Takes over what unlocked the other, if that is the same store.
  void unlockLike(SecFormat1Store& other);
  /// Returns the secret that unlocked it.
  const SecSecret& secret() const { return secret_; }

  /// Passes `visit` all entries, oldest first, until it returns false.
  void read(const std::function<bool(SecRow)>& visit);
  /// Passes `visit` every entry that can be decrypted, whatever else is damaged.
  void salvage(const std::function<void(SecEntry)>& visit);
  void verify();
  std::uint64_t count();

 private:
  struct Line;
  struct Seal;
  Seal readSeal();
  std::vector<Line> decodeLines(SecView bytes);
  std::vector<Line> readLines(const Seal& seal);
  SecEntry readEntry(const Line& line);

  SecFileDatabase& database_;
  SecStoreID id_{};
  SecFormat1Slot slot_;
  SecSecret secret_;
  std::optional<SecFormat1Keys> keys_;
};

/// A transaction that reads a store of format 1; changes fail with errSecReadOnly.
class SecFormat1Transaction final : public SecTransaction {
 public:
  explicit SecFormat1Transaction(SecFormat1Store& store) : store_(store) {}

  void find(const SecQuery& query, SecSecrets secrets, const std::function<bool(SecRow)>& visit) override;
  void insert(const SecEntry&) override { throw SecFailure{errSecReadOnly}; }
  void replace(std::int64_t, const SecAttributes&, const std::optional<SecSecret>&) override {
    throw SecFailure{errSecReadOnly};
  }
  void remove(std::int64_t) override { throw SecFailure{errSecReadOnly}; }

 private:
  SecFormat1Store& store_;
};
