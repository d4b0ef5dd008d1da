#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "tool/Descriptor.h"

/// Output that waits until all of it is known to be right: up to 1 MiB in memory, otherwise in a temporary
/// file without a name, which only this user could read, in $TMPDIR or else in /var/tmp.
class Spool {
 public:
  /// Throws Failure if the temporary file cannot be made or written.
  void append(std::span<const std::byte> bytes);

  /// Writes everything to standard output. Throws Failure.
  void writeOut();

 private:
  static constexpr std::size_t memoryLength = 1 << 20;
  void writeFile(std::span<const std::byte> bytes) const;

  std::vector<std::byte> memory_;
  std::string folder_;
  Descriptor file_;
  std::size_t length_ = 0;
};
