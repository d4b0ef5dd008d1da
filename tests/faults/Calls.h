#pragma once

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
};
