#include <VXFoundation/kernels/CodecDispatch.h>

namespace VXKernels {

const CodecKernels* const codecKernels[] = {
    &scalarKernels,
#if defined(__x86_64__)
    &avx2Kernels,
    &avx512vbmiKernels,
#elif defined(__aarch64__)
    &neonKernels,
#endif
};

}  // namespace VXKernels
