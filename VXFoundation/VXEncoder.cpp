#include <VXFoundation/VXEncoder.h>

#include <Foundation/NSException.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include <VXFoundation/kernels/CodecDispatch.h>
#include <VXFoundation/kernels/Radix.h>

/// Bytes are encoded in groups, of which only the last one need not be whole.
struct VXEncoder::Rules {
  std::size_t groupBytes;
  std::size_t groupUnits;  // at most
  /// Encodes groups; returns the number of units.
  std::size_t (*encode)(const std::byte* bytes, std::size_t count, std::byte* text);
};

namespace {

using VXKernels::Radix;

template <const Radix& radix>
std::size_t encodeRadix(const std::byte* bytes, std::size_t count, std::byte* text) {
  (VXKernels::kernels().*VXKernels::kernelsOf<radix>).encode(bytes, count, reinterpret_cast<char*>(text));
  return (count + radix.groupBytes - 1) / radix.groupBytes * radix.groupDigits;
}

std::size_t encodeBase2(const std::byte* bytes, std::size_t count, std::byte* text) {
  VXKernels::base2Encode(bytes, count, reinterpret_cast<char*>(text));
  return 9 * count;
}

std::size_t encodePercent(const std::byte* bytes, std::size_t count, std::byte* text) {
  return VXKernels::kernels().percentEncode(bytes, count, text);
}

}  // namespace

const VXEncoder::Rules& VXEncoder::rulesOf(VXNotation notation) noexcept {
  static constexpr auto ofRadix = []<const Radix & radix> {
    return Rules{radix.groupBytes, radix.groupDigits, encodeRadix<radix>};
  };
  static constexpr Rules rules[] = {
      ofRadix.operator()<VXKernels::base64>(),
      ofRadix.operator()<VXKernels::base64URL>(),
      ofRadix.operator()<VXKernels::base32>(),
      ofRadix.operator()<VXKernels::base16>(),
      {1, 9, encodeBase2},
      {1, 3, encodePercent},
  };
  return rules[static_cast<std::size_t>(notation)];
}

VXEncoder::VXEncoder(VXNotation notation) noexcept : rules_(rulesOf(notation)) {}

VXEncoder::~VXEncoder() { explicit_bzero(group_.data(), group_.size()); }

std::size_t VXEncoder::maximumLength(std::size_t count) const noexcept {
  constexpr std::size_t maximum = std::numeric_limits<std::size_t>::max();
  const std::size_t groups = count / rules_.groupBytes;
  return groups < maximum / rules_.groupUnits ? (groups + 1) * rules_.groupUnits : maximum;
}

void VXEncoder::prepare(std::size_t count, std::span<std::byte> text) const {
  if (ended_) NSException::raise(NSInternalInconsistencyException, "the text has ended");
  if (text.size() < maximumLength(count))
    NSException::raise(NSRangeException, "there is no room for the text");
}

/// Moves bytes into the group until it is whole; returns the others.
std::span<const std::byte> VXEncoder::fillGroup(std::span<const std::byte> bytes) noexcept {
  const auto moved = bytes.first(std::min(bytes.size(), rules_.groupBytes - grouped_));
  std::copy(moved.begin(), moved.end(), group_.begin() + grouped_);
  grouped_ += moved.size();
  return bytes.subspan(moved.size());
}

std::size_t VXEncoder::update(std::span<const std::byte> bytes, std::span<std::byte> text) {
  prepare(bytes.size(), text);
  std::byte* end = text.data();
  if (grouped_ > 0) {
    bytes = fillGroup(bytes);
    if (grouped_ < rules_.groupBytes) return 0;
    end += rules_.encode(group_.data(), std::exchange(grouped_, 0), end);
  }
  const std::size_t whole = bytes.size() / rules_.groupBytes * rules_.groupBytes;
  end += rules_.encode(bytes.data(), whole, end);
  fillGroup(bytes.subspan(whole));
  return static_cast<std::size_t>(end - text.data());
}

std::size_t VXEncoder::finish(std::span<std::byte> text) {
  prepare(0, text);
  ended_ = true;
  return rules_.encode(group_.data(), grouped_, text.data());
}

void VXEncoder::update(const NSData& bytes, NSMutableData& text) {
  if (&bytes == &text) NSException::raise(NSInvalidArgumentException, "the text is the bytes themselves");
  secret_ |= bytes.holdsSecret();
  if (secret_) text.setHoldsSecret(true);
  text.appendMaximumLength(maximumLength(bytes.length()),
                           [&](std::span<std::byte> room) { return update(bytes.bytes(), room); });
}

void VXEncoder::finish(NSMutableData& text) {
  if (secret_) text.setHoldsSecret(true);
  text.appendMaximumLength(maximumLength(0), [&](std::span<std::byte> room) { return finish(room); });
}
