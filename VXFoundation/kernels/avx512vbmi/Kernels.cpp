// The set for AVX-512 with VBMI, VBMI2 and BMI2.
#include <VXFoundation/kernels/avx512vbmi/PercentKernels.h>
#include <VXFoundation/kernels/avx512vbmi/RadixKernels.h>

namespace VXKernels {

const CodecKernels avx512vbmiKernels = {
    "avx512vbmi",
    {encode<base64>, decode<base64>},
    {encode<base64URL>, decode<base64URL>},
    {encode<base32>, decode<base32>},
    {encode<base16>, decode<base16>},
    percentEncode,
    percentDecode,
};

}  // namespace VXKernels
