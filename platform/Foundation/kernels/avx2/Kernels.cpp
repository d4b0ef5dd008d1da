// The set for AVX2.
#include <Foundation/kernels/avx2/UTF16Kernels.h>
#include <Foundation/kernels/avx2/UTF8Kernels.h>

namespace NSKernels {

const UnicodeKernels avx2Kernels = {
    "avx2", asciiBytes, asciiUnits, unitsBefore, utf16Length, utf16FromUTF8, utf8Length, utf8FromUTF16,
};

}  // namespace NSKernels
