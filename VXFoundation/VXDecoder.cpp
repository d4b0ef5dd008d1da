#include <VXFoundation/VXDecoder.h>

#include <Foundation/NSException.h>

#include <algorithm>
#include <cstring>

#include <VXFoundation/Internal/VXTextReader.h>

namespace {

/// The kernels do not report where text is malformed: a block that they refuse is read unit by unit.
constexpr std::size_t blockUnits = 4096;

const VXTextReader& readerOf(VXNotation notation) {
  const VXTextReader* const reader = VXTextReader::of(notation);
  if (!reader) NSException::raise(NSInvalidArgumentException, "text in base 2 cannot be decoded");
  return *reader;
}

}  // namespace

VXDecoder::VXDecoder(VXNotation notation) : reader_(readerOf(notation)) {}

VXDecoder::~VXDecoder() { explicit_bzero(group_.data(), group_.size()); }

std::size_t VXDecoder::maximumLength(std::size_t count) const noexcept {
  return reader_.maximumLength(count);
}

void VXDecoder::prepare(std::size_t count, std::span<std::byte> bytes) const {
  if (ended_) NSException::raise(NSInternalInconsistencyException, "the text has ended");
  if (bytes.size() < maximumLength(count))
    NSException::raise(NSRangeException, "there is no room for the bytes");
}

/// Decodes the whole groups at the start of the text; returns the number of their units, or 0 if the text
/// must be read unit by unit.
std::size_t VXDecoder::decodePlain(std::span<const std::byte> text, std::byte*& end) const {
  const std::size_t units = grouped_ == 0 ? reader_.wholeGroups(text) : 0;
  const std::size_t count = reader_.decode(text.first(units), end);
  if (count == VXKernels::malformed) return 0;
  end += count;
  return units;
}

/// Decodes one unit; returns false if it is refused.
bool VXDecoder::take(std::byte unit, std::byte*& end) {
  if (!reader_.mayFollow(group(), unit)) return false;
  group_[grouped_++] = unit;
  ++read_;
  if (!reader_.isWhole(group())) return true;
  end += reader_.decodeGroup(group(), end);
  if (!reader_.isLast(group())) grouped_ = 0;
  return true;
}

bool VXDecoder::takeEach(std::span<const std::byte> text, std::byte*& end) {
  return std::all_of(text.begin(), text.end(), [&](std::byte unit) { return take(unit, end); });
}

std::optional<std::size_t> VXDecoder::update(std::span<const std::byte> text, std::span<std::byte> bytes) {
  prepare(text.size(), bytes);
  std::byte* end = bytes.data();
  while (!refusal_ && !text.empty()) {
    const auto block = text.first(std::min(text.size(), grouped_ == 0 ? blockUnits : 1));
    const std::size_t plain = decodePlain(block, end);
    read_ += plain;
    if (plain == 0 && !takeEach(block, end)) refusal_ = read_;
    text = text.subspan(plain > 0 ? plain : block.size());
  }
  if (refusal_) return std::nullopt;
  return static_cast<std::size_t>(end - bytes.data());
}

std::optional<std::size_t> VXDecoder::finish(std::span<std::byte> bytes) {
  prepare(0, bytes);
  ended_ = true;
  if (!refusal_ && !reader_.mayEnd(group())) refusal_ = read_;
  if (refusal_) return std::nullopt;
  return reader_.isLast(group()) ? 0 : reader_.decodeGroup(group(), bytes.data());
}

bool VXDecoder::update(const NSData& text, NSMutableData& bytes) {
  if (&text == &bytes) NSException::raise(NSInvalidArgumentException, "the bytes are the text itself");
  secret_ |= text.holdsSecret();
  if (secret_) bytes.setHoldsSecret(true);
  bytes.appendMaximumLength(maximumLength(text.length()), [&](std::span<std::byte> room) {
    return update(text.bytes(), room).value_or(0);
  });
  return !refusal_;
}

bool VXDecoder::finish(NSMutableData& bytes) {
  if (secret_) bytes.setHoldsSecret(true);
  bytes.appendMaximumLength(maximumLength(0),
                            [&](std::span<std::byte> room) { return finish(room).value_or(0); });
  return !refusal_;
}
