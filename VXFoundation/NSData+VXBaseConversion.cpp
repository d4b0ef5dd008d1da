#include <VXFoundation/NSData+VXBaseConversion.h>

#include <VXFoundation/Internal/VXPadding.h>
#include <VXFoundation/kernels/CodecDispatch.h>
#include <VXFoundation/kernels/Radix.h>

namespace VXBaseConversion {
namespace {

using VXKernels::Radix;

template <const Radix& radix>
const VXKernels::RadixKernels& kernelsInUse() {
  return VXKernels::kernels().*VXKernels::kernelsOf<radix>;
}

NSRef<NSString> encode(const NSData& data, std::size_t length, VXKernels::Encode* kernel) {
  const auto text = NSString::stringWithASCIILength(
      length, [&](std::span<char> buffer) { kernel(data.bytes().data(), data.length(), buffer.data()); });
  text->setHoldsSecret(data.holdsSecret());
  return text;
}

template <const Radix& radix>
NSRef<NSString> encode(const NSData& data) {
  const std::size_t groups = data.length() / radix.groupBytes + (data.length() % radix.groupBytes != 0);
  return encode(data, groups * radix.groupDigits, kernelsInUse<radix>().encode);
}

/// Returns the text without the padding at its end; std::nullopt if the text is not whole groups or the
/// padding has a wrong length. Earlier padding is left to the kernel, for which it is not a digit.
template <const Radix& radix>
std::optional<std::string_view> digitsOf(std::string_view text) {
  std::size_t digits = text.size();
  while (digits > 0 && text[digits - 1] == VXKernels::_padding) --digits;
  const std::size_t padding = text.size() - digits;
  if (text.size() % radix.groupDigits != 0 || padding >= radix.groupDigits) return std::nullopt;
  constexpr unsigned valid = VXValidPaddings(radix);
  if ((valid >> padding & 1) == 0) return std::nullopt;
  return std::string_view(text.data(), digits);
}

template <const Radix& radix>
NSRefPtr<NSData> decode(std::string_view text) {
  const auto digits = digitsOf<radix>(text);
  if (!digits) return nullptr;
  const std::size_t length = digits->size() / 8 * radix.bits + digits->size() % 8 * radix.bits / 8;
  const auto write = [&](std::span<std::byte> buffer) -> std::optional<std::size_t> {
    if (!kernelsInUse<radix>().decode(digits->data(), digits->size(), buffer.data())) return std::nullopt;
    return length;
  };
  return NSMutableData::dataWithMaximumLength(length, write);
}

template <const Radix& radix>
NSRefPtr<NSData> decode(NSStringArg parameter) {
  const auto text = parameter.borrow();
  if (!text || !text->isASCII()) return nullptr;
  NSRefPtr<NSData> data = text->visit([&](auto units) -> NSRefPtr<NSData> {
    if constexpr (sizeof units[0] == 1) return decode<radix>(units);
    return nullptr;
  });
  if (data) data->setHoldsSecret(text->holdsSecret());
  return data;
}

}  // namespace

NSRef<NSString> base64String(const NSData& data) { return encode<VXKernels::base64>(data); }
NSRefPtr<NSData> dataWithBase64String(NSStringArg text) { return decode<VXKernels::base64>(text); }

NSRef<NSString> base32String(const NSData& data) { return encode<VXKernels::base32>(data); }
NSRefPtr<NSData> dataWithBase32String(NSStringArg text) { return decode<VXKernels::base32>(text); }

NSRef<NSString> base16String(const NSData& data) { return encode<VXKernels::base16>(data); }
NSRefPtr<NSData> dataWithBase16String(NSStringArg text) { return decode<VXKernels::base16>(text); }

NSRef<NSString> base2String(const NSData& data) {
  return encode(data, data.length() * 9, VXKernels::base2Encode);
}

}  // namespace VXBaseConversion
