// The set for AVX2.
#include <VXFoundation/kernels/avx2/PercentKernels.h>
#include <VXFoundation/kernels/avx2/RadixDecoders.h>
#include <VXFoundation/kernels/avx2/RadixEncoders.h>

namespace VXKernels {

const CodecKernels avx2Kernels = {
    "avx2",
    {encode<base64>, decode<base64>},
    {encode<base64URL>, decode<base64URL>},
    {encode<base32>, decode<base32>},
    {encode<base16>, decode<base16>},
    percentEncode,
    percentDecode,
};

}  // namespace VXKernels
