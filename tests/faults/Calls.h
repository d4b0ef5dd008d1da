#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The calls that this program and its libraries make to the system and the C library, one of which can be
/// made to fail. The definitions here replace those of the C library in all of them.
class Calls {
 public:
  enum Kind { reading = 1, writing = 2, syncing = 4, opening = 8, naming = 16, memory = 32, randomness = 64 };
  enum class Fate { fail, fill, kill, stop };  // an error, a full disk, or a signal to the process

  /// Counts calls of these kinds from now on; the `nth`, and all after it if it `lasts`, meet their fate.
  static void arm(int kinds, long nth, Fate fate, bool lasts = false);
  /// Stops counting; returns whether a call met its fate.
  static bool disarm();
  /// Returns whether a call of this kind must fail now, and sets errno.
  static bool fails(Kind kind) noexcept;

  /// A call that changed a file or a folder, by its inode: bytes written at an offset, the size that it was
  /// cut to, a sync, or the file that a name in a folder has from now on (0: none).
  struct Change {
    enum What { written, cut, synced, named } what;
    ino_t file;
    std::uint64_t number = 0;  ///< the offset, the size, or the inode
    std::string bytes = {};    ///< or the name
  };
  /// Appends every such call to `changes` from now on; null ends that.
  static void record(std::vector<Change>* changes);
  /// Writes every key that libcrypto gets or makes to this file.
  static void copyKeysTo(int file);
  /// Writes them there, if that was asked for: each 32 bytes.
  static void noteKeys(const void* bytes, std::size_t size);
};
