#pragma once

#include <cstddef>
#include <span>

#include <VXFoundation/VXNotation.h>
#include <VXFoundation/kernels/CodecKernels.h>

/// How text of one notation is read, for decoders in pieces. A group is the units that are decoded together.
class VXTextReader {
 public:
  using Text = std::span<const std::byte>;

  /// Returns null for a notation that is only written. Thread-safe, as is the reader.
  static const VXTextReader* of(VXNotation notation) noexcept;

  /// Returns how many bytes `count` units, together with an earlier part of a group, encode at most.
  virtual std::size_t maximumLength(std::size_t count) const noexcept = 0;

  /// Returns the number of units in the groups at the start of the text that are whole, if none of them has
  /// padding; the last ones may be left out.
  virtual std::size_t wholeGroups(Text text) const noexcept = 0;
  /// Decodes whole groups without padding. Returns the number of bytes, or VXKernels::malformed.
  virtual std::size_t decode(Text groups, std::byte* bytes) const noexcept = 0;

  /// Returns whether the unit may follow those of a group that is not whole.
  virtual bool mayFollow(Text group, std::byte unit) const noexcept = 0;
  /// Returns whether the group is whole.
  virtual bool isWhole(Text group) const noexcept = 0;
  /// Returns whether the group is whole and nothing may follow it.
  virtual bool isLast(Text group) const noexcept = 0;
  /// Returns whether the text may end after these units of a group, which may be none.
  virtual bool mayEnd(Text group) const noexcept = 0;
  /// Decodes a group that is whole, or with which the text may end. Returns the number of bytes.
  virtual std::size_t decodeGroup(Text group, std::byte* bytes) const noexcept = 0;

 protected:
  constexpr VXTextReader() = default;
  ~VXTextReader() = default;
};
