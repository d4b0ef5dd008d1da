#pragma once

#include <Security/FileStore/SecFileNote.h>
#include <Security/FileStore/SecFileSeal.h>

/// Notices that a store went back to a former state: remembers the count of changes that it was last seen
/// with, in this process and in its note. Used by one thread at a time.
class SecFileWatch {
 public:
  /// For the store at `path`.
  explicit SecFileWatch(std::string path) : path_(std::move(path)) {}

  /// Returns whether the store went back. `keyFolder` is null if it is missing.
  bool hasGoneBack(const SecStoreID& store, const SecFileSeal& seal, const SecFileFolder* keyFolder);
  /// Remembers the count of changes, and writes it down if that is new.
  void remember(const SecStoreID& store, const SecFileSeal& seal, const SecFileFolder* keyFolder);
  /// Does the same for a store that went back.
  void accept(const SecStoreID& store, const SecFileSeal& seal, const SecFileFolder* keyFolder);

 private:
  struct Seen {
    SecStoreID store;
    std::uint64_t changes;
  };
  std::string path_;
  std::optional<Seen> seen_;
};
