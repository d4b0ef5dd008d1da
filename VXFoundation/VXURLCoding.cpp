#include <VXFoundation/VXURLCoding.h>

#include <new>

#include <VXFoundation/kernels/CodecDispatch.h>

namespace {

std::size_t roomToEncode(std::size_t length) {
  if (length > std::numeric_limits<std::size_t>::max() / 3) throw std::bad_alloc();
  return 3 * length;
}

}  // namespace

NSRefPtr<NSData> VXURLEncodeData(const NSRefPtr<NSData>& data) {
  if (!data) return nullptr;
  auto encoded =
      NSMutableData::dataWithMaximumLength(roomToEncode(data->length()), [&](std::span<std::byte> buffer) {
        return VXKernels::kernels().percentEncode(data->bytes().data(), data->length(), buffer.data());
      });
  encoded->setHoldsSecret(data->holdsSecret());
  return encoded;
}

NSRefPtr<NSData> VXURLDecodeData(const NSRefPtr<NSData>& data) {
  if (!data) return nullptr;
  auto decoded = NSMutableData::dataWithMaximumLength(
      data->length(), [&](std::span<std::byte> buffer) -> std::optional<std::size_t> {
        const std::size_t count =
            VXKernels::kernels().percentDecode(data->bytes().data(), data->length(), buffer.data());
        if (count == VXKernels::malformed) return std::nullopt;
        return count;
      });
  if (decoded) decoded->setHoldsSecret(data->holdsSecret());
  return decoded;
}

NSRefPtr<NSString> VXURLEncodeString(NSStringArg parameter) {
  const auto text = parameter.borrow();
  if (!text) return nullptr;
  return NSString::stringWithData(VXURLEncodeData(text->dataUsingEncoding(NSUTF8StringEncoding)),
                                  NSASCIIStringEncoding);
}

NSRefPtr<NSString> VXURLDecodeString(NSStringArg parameter) {
  const auto text = parameter.borrow();
  if (!text) return nullptr;
  return NSString::stringWithData(VXURLDecodeData(text->dataUsingEncoding(NSASCIIStringEncoding)),
                                  NSUTF8StringEncoding);
}
