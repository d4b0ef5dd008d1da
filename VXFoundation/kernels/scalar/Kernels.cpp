// The scalar set.
#include <VXFoundation/kernels/scalar/PercentKernels.h>
#include <VXFoundation/kernels/scalar/RadixKernels.h>

namespace VXKernels {

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
  for (std::size_t i = 0; i < count; ++i) {
    for (unsigned bit = 8; bit-- > 0;) *text++ = (std::to_integer<unsigned>(bytes[i]) >> bit & 1) ? '1' : '0';
    *text++ = ' ';
  }
}

}  // namespace VXKernels
