#pragma once

#include <Foundation/NSData.h>

#include <array>
#include <optional>
#include <span>

#include <VXFoundation/VXNotation.h>

class VXTextReader;

/// Decodes text that comes in pieces, of any size and number, and of any length: what `update` and `finish`
/// write, in order, is what the notation's operation on the whole text returns, and what that refuses is
/// refused. A unit of text is a byte. Whatever was written before a refusal is void. What it keeps of the
/// text is cleansed from memory. For one thread at a time.
class NS_EXPORT VXDecoder {
 public:
  /// Raises the invalid-argument exception for VXNotation::base2.
  explicit VXDecoder(VXNotation notation);
  VXDecoder(const VXDecoder&) = delete;
  VXDecoder& operator=(const VXDecoder&) = delete;
  ~VXDecoder();

  /// Returns how many bytes `update` writes at most for `count` units, and `finish` for 0.
  std::size_t maximumLength(std::size_t count) const noexcept;

  /// Writes as many bytes as the text determines and returns their number; no value if the text is refused,
  /// as every later piece then is. `bytes` must not overlap the text; it may be overwritten beyond that
  /// number. Raises the range exception if `bytes` is shorter than the maximum, and the
  /// internal-inconsistency exception after `finish`.
  std::optional<std::size_t> update(std::span<const std::byte> text, std::span<std::byte> bytes);
  /// Writes the last bytes and returns their number; no value if the text is refused, now or before. Raises
  /// as `update` does. Nothing may follow.
  std::optional<std::size_t> finish(std::span<std::byte> bytes);

  /// Do the same, but append to `bytes`, which become a secret if the text was one. Return false if the text
  /// is refused; nothing is then appended. Raise the invalid-argument exception if `bytes` is `text`.
  ///@{
  bool update(const NSData& text, NSMutableData& bytes);
  bool finish(NSMutableData& bytes);
  ///@}

  /// Returns where the text was refused: the index, from its start, of the first unit after which no accepted
  /// text can follow, or the length of the text if it only ended too early; no value if it was not refused.
  std::optional<std::size_t> refusal() const noexcept { return refusal_; }

 private:
  std::span<const std::byte> group() const noexcept { return {group_.data(), grouped_}; }
  void prepare(std::size_t count, std::span<std::byte> bytes) const;
  std::size_t decodePlain(std::span<const std::byte> text, std::byte*& end) const;
  bool take(std::byte unit, std::byte*& end);
  bool takeEach(std::span<const std::byte> text, std::byte*& end);

  const VXTextReader& reader_;
  std::array<std::byte, 8> group_{};  // the units of a group that is not whole yet, or of one with padding
  std::size_t grouped_ = 0;
  std::size_t read_ = 0;  // the units before the next one
  std::optional<std::size_t> refusal_;
  bool ended_ = false;
  bool secret_ = false;
};
