// The set for 64-bit ARM.
#include <VXFoundation/kernels/neon/PercentKernels.h>
#include <VXFoundation/kernels/neon/RadixKernels.h>

namespace VXKernels {

const CodecKernels neonKernels = {
    "neon",
    {encode<base64, 48, 48, encodeBase64Block<base64>>, decode<base64, 64, 64, decodeBase64Block<base64>>},
    {encode<base64URL, 48, 48, encodeBase64Block<base64URL>>,
     decode<base64URL, 64, 64, decodeBase64Block<base64URL>>},
    // A block reads or writes sixteen bytes, of which ten count; 26 digits decode to sixteen bytes.
    {encode<base32, 10, 16, encodeBase32Block>, decode<base32, 16, 26, decodeBase32Block>},
    {encode<base16, 16, 16, encodeBase16Block>, decode<base16, 32, 32, decodeBase16Block>},
    percentEncode,
    percentDecode,
};

}  // namespace VXKernels
