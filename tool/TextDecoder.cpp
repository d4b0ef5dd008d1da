#include "tool/TextDecoder.h"

#include <array>
#include <cstring>

#include "tool/Failure.h"
#include "tool/Forms.h"
#include "tool/Input.h"

namespace {

constexpr std::array newline{std::byte{'\n'}};

bool isLineBreak(std::byte unit) { return unit == std::byte{'\n'} || unit == std::byte{'\r'}; }

Message describe(std::byte unit) {
  constexpr char digits[] = "0123456789ABCDEF";
  const auto value = std::to_integer<unsigned char>(unit);
  if (isLineBreak(unit)) return "a line break; see --ignore-newlines"_text;
  if (value == ' ') return "unexpected space"_text;
  if (value > ' ' && value < 0x7F) return "unexpected '{1}'"_text(std::string(1, static_cast<char>(value)));
  return "unexpected byte 0x{1}"_text(std::string{digits[value >> 4], digits[value & 15]});
}

}  // namespace

TextDecoder::TextDecoder(std::string form, std::string name, bool ignoresLineBreaks)
    : form_(std::move(form)),
      name_(std::move(name)),
      ignoresLineBreaks_(ignoresLineBreaks),
      decoder_(decodedForms.at(form_)),
      bytes_(decoder_.maximumLength(Input::pieceLength + newline.size())) {
  units_.reserve(Input::pieceLength);
}

TextDecoder::Bytes TextDecoder::update(Bytes text) {
  filled_ = 0;
  if (newlineIsLeft_) take(newline);
  newlineIsLeft_ = !ignoresLineBreaks_ && text.back() == newline[0];
  take(text.first(text.size() - (newlineIsLeft_ ? 1 : 0)));
  return filled();
}

TextDecoder::Bytes TextDecoder::finish() {
  filled_ = 0;
  add(decoder_.finish(room()), {});
  return filled();
}

void TextDecoder::take(Bytes text) {
  const Bytes units = ignoresLineBreaks_ ? withoutLineBreaks(text) : text;
  add(decoder_.update(units, room()), text);
  offset_ += text.size();
  read_ += units.size();
}

TextDecoder::Bytes TextDecoder::withoutLineBreaks(Bytes text) {
  units_.clear();
  while (!text.empty()) {
    const void* const found = std::memchr(text.data(), '\n', text.size());
    const Bytes line = found ? Bytes(text.data(), static_cast<const std::byte*>(found)) : text;
    units_.insert(units_.end(), line.begin(), line.end());
    text = text.subspan(line.size() + (found ? 1 : 0));
  }
  if (std::memchr(units_.data(), '\r', units_.size())) std::erase(units_, std::byte{'\r'});
  return units_;
}

void TextDecoder::add(std::optional<std::size_t> count, Bytes text) {
  if (!count) refuse(text);
  filled_ += *count;
}

void TextDecoder::refuse(Bytes text) const {
  const std::size_t place = placeOf(*decoder_.refusal() - read_, text);
  throw Failure("{1} is not {2} text: byte {3}: {4}"_text(
      name_, form_, std::to_string(offset_ + place + 1),
      (place < text.size() ? describe(text[place]) : "unexpected end"_text).text()));
}

/// Returns where a unit is in the text that it was read from.
std::size_t TextDecoder::placeOf(std::size_t unit, Bytes text) const {
  if (!ignoresLineBreaks_) return unit;
  std::size_t place = 0;
  while (place < text.size() && (isLineBreak(text[place]) || unit-- > 0)) ++place;
  return place;
}
