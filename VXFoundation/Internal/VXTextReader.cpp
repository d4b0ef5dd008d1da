#include <VXFoundation/Internal/VXTextReader.h>

#include <algorithm>

#include <VXFoundation/Internal/VXPadding.h>
#include <VXFoundation/kernels/CodecDispatch.h>
#include <VXFoundation/kernels/Radix.h>

namespace {

using VXKernels::Radix;

constexpr std::byte padding{VXKernels::_padding};

const char* characters(std::span<const std::byte> text) { return reinterpret_cast<const char*>(text.data()); }

template <const Radix& radix>
bool isDigit(std::byte unit) {
  static constexpr VXKernels::DigitValues values = VXKernels::digitValues(radix);
  return values.of[std::to_integer<unsigned char>(unit)] != VXKernels::notADigit;
}

/// The notations of RFC 4648. Padding may be left out where `needsPadding` is false.
template <const Radix& radix, bool needsPadding = true>
class RadixReader final : public VXTextReader {
 public:
  constexpr RadixReader() = default;

  std::size_t maximumLength(std::size_t count) const noexcept override {
    return (count / radix.groupDigits + 1) * radix.groupBytes;
  }

  std::size_t wholeGroups(Text text) const noexcept override {
    const std::size_t whole = text.size() / radix.groupDigits * radix.groupDigits;
    return whole > 0 && text[whole - 1] == padding ? whole - radix.groupDigits : whole;
  }

  std::size_t decode(Text digits, std::byte* bytes) const noexcept override {
    const auto& kernels = VXKernels::kernels().*VXKernels::kernelsOf<radix>;
    if (!kernels.decode(characters(digits), digits.size(), bytes)) return VXKernels::malformed;
    return digits.size() / radix.groupDigits * radix.groupBytes +
           digits.size() % radix.groupDigits * radix.bits / 8;
  }

  bool mayFollow(Text group, std::byte unit) const noexcept override {
    if (isWhole(group)) return false;
    const bool padded = !group.empty() && group.back() == padding;
    if (unit == padding) return padded || isValidPadding(radix.groupDigits - group.size());
    return !padded && isDigit<radix>(unit);
  }

  bool isWhole(Text group) const noexcept override { return group.size() == radix.groupDigits; }
  bool isLast(Text group) const noexcept override { return isWhole(group) && group.back() == padding; }

  bool mayEnd(Text group) const noexcept override {
    if (group.empty() || isWhole(group)) return true;
    return !needsPadding && group.back() != padding && isValidPadding(radix.groupDigits - group.size());
  }

  std::size_t decodeGroup(Text group, std::byte* bytes) const noexcept override {
    while (!group.empty() && group.back() == padding) group = group.first(group.size() - 1);
    return decode(group, bytes);
  }

 private:
  static constexpr bool isValidPadding(std::size_t length) {
    return (VXValidPaddings(radix) >> length & 1) != 0;
  }
};

/// Percent-encoded bytes: a group is an escape or any other byte.
class PercentReader final : public VXTextReader {
 public:
  constexpr PercentReader() = default;

  std::size_t maximumLength(std::size_t count) const noexcept override { return count; }

  std::size_t wholeGroups(Text text) const noexcept override {
    const std::size_t last = std::min<std::size_t>(text.size(), 2);
    const auto escape = std::find(text.end() - static_cast<std::ptrdiff_t>(last), text.end(), sign);
    return static_cast<std::size_t>(escape - text.begin());
  }

  std::size_t decode(Text groups, std::byte* bytes) const noexcept override {
    return VXKernels::kernels().percentDecode(groups.data(), groups.size(), bytes);
  }

  bool mayFollow(Text group, std::byte unit) const noexcept override {
    return group.empty() || isDigit<VXKernels::base16>(unit);
  }
  bool isWhole(Text group) const noexcept override { return group[0] != sign || group.size() == 3; }
  bool isLast(Text) const noexcept override { return false; }
  bool mayEnd(Text group) const noexcept override { return group.empty(); }

  std::size_t decodeGroup(Text group, std::byte* bytes) const noexcept override {
    if (group.empty()) return 0;
    *bytes = group[0];
    if (group[0] == sign) VXKernels::kernels().base16.decode(characters(group.subspan(1)), 2, bytes);
    return 1;
  }

 private:
  static constexpr std::byte sign{'%'};
};

constexpr RadixReader<VXKernels::base64> base64;
constexpr RadixReader<VXKernels::base64URL, false> base64URL;
constexpr RadixReader<VXKernels::base32> base32;
constexpr RadixReader<VXKernels::base16> base16;
constexpr PercentReader percent;

}  // namespace

const VXTextReader* VXTextReader::of(VXNotation notation) noexcept {
  static constexpr const VXTextReader* readers[] = {&base64, &base64URL, &base32, &base16, nullptr, &percent};
  return readers[static_cast<std::size_t>(notation)];
}
