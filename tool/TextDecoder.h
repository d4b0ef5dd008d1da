#pragma once

#include <VXFoundation/VXDecoder.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

/// Decodes the text of a file, piece by piece: without its line breaks, if they are to be ignored, or else
/// without one newline at its end.
class TextDecoder {
 public:
  using Bytes = std::span<const std::byte>;

  /// `form` is one of `decodedForms`; `name` is what messages call the file.
  TextDecoder(std::string form, std::string name, bool ignoresLineBreaks);

  /// Returns the bytes that the text determines, until the next call; `text` is not empty, and at most
  /// Input::pieceLength. Throws Failure, which says where and why, if the text is refused.
  ///@{
  Bytes update(Bytes text);
  Bytes finish();
  ///@}

 private:
  void take(Bytes text);
  Bytes withoutLineBreaks(Bytes text);
  void add(std::optional<std::size_t> count, Bytes text);
  [[noreturn]] void refuse(Bytes text) const;
  std::size_t placeOf(std::size_t unit, Bytes text) const;

  std::span<std::byte> room() { return std::span(bytes_).subspan(filled_); }
  Bytes filled() const { return Bytes(bytes_).first(filled_); }

  const std::string form_, name_;
  const bool ignoresLineBreaks_;
  VXDecoder decoder_;
  std::vector<std::byte> bytes_, units_;
  std::size_t filled_ = 0;
  std::size_t offset_ = 0;  // bytes of the text that were taken
  std::size_t read_ = 0;    // those of them that the decoder has read
  bool newlineIsLeft_ = false;
};
