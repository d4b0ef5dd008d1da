#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <vector>

#include "tool/Descriptor.h"
#include "tool/Progress.h"

/// A file or standard input, read in pieces of at most `pieceLength` bytes.
class Input {
 public:
  static constexpr std::size_t pieceLength = 1 << 17;

  /// Opens a file; "-" is standard input. Throws Failure.
  explicit Input(const std::string& path);

  /// Returns what to call it in a message.
  const std::string& name() const { return name_; }
  /// Returns whether it is a regular file, which can be read again.
  bool isRegular() const { return S_ISREG(before_.st_mode); }
  /// Returns the number of bytes in all, if it is known.
  std::optional<std::size_t> length() const;

  /// Throws Failure if it is also the file to which standard output goes, and would be read as it grows.
  void requireOtherOutput() const;

  /// Calls `each` with every piece, to the end, and counts their bytes as progress. Throws Failure if the
  /// file cannot be read.
  void forEachPiece(Progress& progress, auto&& each) {
    for (auto piece = read(); !piece.empty(); piece = read()) {
      each(piece);
      progress.advance(piece.size());
    }
  }

  /// Goes back to where a regular file was when it was opened. Throws Failure if it has changed since.
  void rewind();
  /// Throws Failure if a regular file has changed since it was opened; a removed one has.
  void requireUnchanged() const;

 private:
  int number() const { return file_ ? file_.number() : 0; }
  std::span<const std::byte> read();

  std::string name_;
  Descriptor file_;  // none for standard input
  struct stat before_ = {};
  off_t start_ = 0;
  std::vector<std::byte> piece_;
};
