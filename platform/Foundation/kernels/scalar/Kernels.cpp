// The scalar set.
#include <Foundation/kernels/scalar/UTF16Kernels.h>
#include <Foundation/kernels/scalar/UTF8Kernels.h>

namespace NSKernels {

const UnicodeKernels scalarKernels = {
    "scalar",      asciiPrefix<char>, asciiPrefix<char16_t>, unitsBefore, utf16Length,
    utf16FromUTF8, utf8Length,        utf8FromUTF16,
};

std::size_t wellFormedUTF8(const char* bytes, std::size_t count, std::size_t from) {
  while (from > 0 && (bytes[from - 1] & 0xC0) == 0x80) --from;
  if (from > 0) --from;
  while (from < count) {
    const std::size_t length = NSLengthOfUTF8Sequence({bytes + from, count - from});
    if (length == 0) break;
    from += length;
  }
  return from;
}

}  // namespace NSKernels
