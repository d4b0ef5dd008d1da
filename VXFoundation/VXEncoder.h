#pragma once

#include <Foundation/NSData.h>

#include <array>
#include <span>

#include <VXFoundation/VXNotation.h>

/// Encodes bytes that come in pieces, of any size and number, as one text without line breaks, of any length:
/// what `update` and `finish` write, in order, is what the notation's operation on whole data returns. A unit
/// of text is a byte of ASCII. What it keeps of the bytes is cleansed from memory. For one thread at a time.
class NS_EXPORT VXEncoder {
 public:
  /// Begins an empty text.
  explicit VXEncoder(VXNotation notation) noexcept;
  VXEncoder(const VXEncoder&) = delete;
  VXEncoder& operator=(const VXEncoder&) = delete;
  ~VXEncoder();

  /// Returns how many units `update` writes at most for `count` bytes, and `finish` for 0.
  std::size_t maximumLength(std::size_t count) const noexcept;

  /// Writes as much of the text as the bytes determine, and returns its length. `text` must not overlap the
  /// bytes; it may be overwritten beyond that length. Raises the range exception if `text` is shorter than
  /// the maximum, and the internal-inconsistency exception after `finish`.
  std::size_t update(std::span<const std::byte> bytes, std::span<std::byte> text);
  /// Writes the end of the text and returns its length; raises as `update` does. Nothing may follow.
  std::size_t finish(std::span<std::byte> text);

  /// Do the same, but append to `text`, which becomes a secret if the bytes were one. Raise the
  /// invalid-argument exception if `text` is `bytes`.
  ///@{
  void update(const NSData& bytes, NSMutableData& text);
  void finish(NSMutableData& text);
  ///@}

 private:
  struct Rules;
  static const Rules& rulesOf(VXNotation notation) noexcept;

  void prepare(std::size_t count, std::span<std::byte> text) const;
  std::span<const std::byte> fillGroup(std::span<const std::byte> bytes) noexcept;

  const Rules& rules_;
  std::array<std::byte, 5> group_{};  // the bytes of a group that is not whole yet
  std::size_t grouped_ = 0;
  bool ended_ = false;
  bool secret_ = false;
};
