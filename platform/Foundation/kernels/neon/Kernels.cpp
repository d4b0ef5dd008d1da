// The set for 64-bit ARM.
#include <Foundation/kernels/neon/UTF16Kernels.h>
#include <Foundation/kernels/neon/UTF8Kernels.h>

namespace NSKernels {

const UnicodeKernels neonKernels = {
    "neon", asciiBytes, asciiUnits, unitsBefore, utf16Length, utf16FromUTF8, utf8Length, utf8FromUTF16,
};

}  // namespace NSKernels
