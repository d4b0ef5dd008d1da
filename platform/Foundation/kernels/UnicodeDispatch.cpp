#include <Foundation/kernels/UnicodeDispatch.h>

namespace NSKernels {

const UnicodeKernels* const unicodeKernels[] = {
    &scalarKernels,
#if defined(__x86_64__)
    &avx2Kernels,
    &avx512vbmiKernels,
#elif defined(__aarch64__)
    &neonKernels,
#endif
};

}  // namespace NSKernels
