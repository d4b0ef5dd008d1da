// The scalar set.
#include <VXFoundation/kernels/scalar/PercentKernels.h>
#include <VXFoundation/kernels/scalar/RadixKernels.h>

#include <cstring>

namespace VXKernels {
namespace {

/// For each byte, its binary digits and a space.
struct BinaryDigits {
  char of[256][9];
};

constexpr BinaryDigits binaryDigits() {
  BinaryDigits digits{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    for (unsigned i = 0; i < 8; ++i) digits.of[byte][i] = (byte >> (7 - i) & 1) ? '1' : '0';
    digits.of[byte][8] = ' ';
  }
  return digits;
}

}  // namespace

const CodecKernels scalarKernels = {
    "scalar",
    {encode<base64>, decode<base64>},
    {encode<base64URL>, decode<base64URL>},
    {encode<base32>, decode<base32>},
    {encode<base16>, decode<base16>},
    percentEncode,
    percentDecode,
};

void base2Encode(const std::byte* bytes, std::size_t count, char* text) {
  static constexpr BinaryDigits digits = binaryDigits();
  for (std::size_t i = 0; i < count; ++i, text += sizeof digits.of[0])
    std::memcpy(text, digits.of[std::to_integer<unsigned>(bytes[i])], sizeof digits.of[0]);
}

}  // namespace VXKernels
