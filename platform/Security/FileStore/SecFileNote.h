#pragma once

#include <cstdint>
#include <optional>

#include <Security/FileStore/SecFileFolder.h>
#include <Security/FileStore/SecFileKeys.h>

/// The note of how many changes a store had when it was last seen, by which an old copy put back is noticed.
/// A file in the key folder, one for each path and store, authenticated with the store's note key. It is
/// written after a commit and never synced: it may be lost, but is never ahead of the store.
class SecFileNote {
 public:
  SecFileNote(const std::string& path, const SecStoreID& store);

  /// Returns no value for a note that is missing or that cannot be read or believed.
  std::optional<std::uint64_t> read(const SecFileFolder& folder, SecView noteKey) const;
  /// Writes the note, whose mode is 0600 whatever the umask.
  void write(const SecFileFolder& folder, SecView noteKey, std::uint64_t changes) const;

 private:
  SecBytes encode(SecView noteKey, std::uint64_t changes) const;

  std::string name_;
};
