#pragma once

/// The calls to the system and the C library that this program and the libraries in it make, one of which
/// can be made to go wrong. The definitions here stand before those of the C library for all of them.
class Calls {
 public:
  enum Kind { reading = 1, writing = 2, syncing = 4, opening = 8, naming = 16, memory = 32, randomness = 64 };
  enum class Fate { fail, fill, kill, stop };  // with an error, with a full disk, or the whole process

  /// Counts calls of these kinds from now on; the `nth` and, when it `lasts`, all after it meet their fate.
  static void arm(int kinds, long nth, Fate fate, bool lasts = false);
  /// Ends that; whether a call met its fate.
  static bool disarm();
  /// True when a call of this kind has to fail now, with errno set.
  static bool fails(Kind kind) noexcept;
};
