// The set for AVX-512 with VBMI, VBMI2 and BMI2.
#include <Foundation/kernels/avx512vbmi/UTF16Kernels.h>
#include <Foundation/kernels/avx512vbmi/UTF8Kernels.h>

namespace NSKernels {

const UnicodeKernels avx512vbmiKernels = {
    "avx512vbmi", asciiBytes, asciiUnits, unitsBefore, utf16Length, utf16FromUTF8, utf8Length, utf8FromUTF16,
};

}  // namespace NSKernels
