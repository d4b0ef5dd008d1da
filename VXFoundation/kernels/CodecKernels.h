#pragma once

#include <cstddef>

/// The inner loops of the codecs, one set of them for each instruction set. All are pure and thread-safe.
///
/// They take pointers and counts: a kernel file is compiled for an instruction set that the machine may lack,
/// so it must not emit an inline function from a header, which the linker could then choose for all callers.
namespace VXKernels {

/// Writes the digits of `count` bytes, and the padding of the last group.
using Encode = void(const std::byte* bytes, std::size_t count, char* text);

/// Writes the `count * bits / 8` bytes of `count` digits, from which padding has been removed; bits of the
/// last digit that do not fill a byte are dropped. Returns false if any character is not a digit; the output
/// is then meaningless.
using Decode = bool(const char* digits, std::size_t count, std::byte* bytes);

/// Percent-encodes `count` bytes (RFC 3986, section 2.1) into a buffer of three times that size. Returns the
/// number of bytes written. The rest of the buffer may be overwritten.
using PercentEncode = std::size_t(const std::byte* bytes, std::size_t count, std::byte* text);

/// Percent-decodes `count` bytes into a buffer of that size. Returns the number of bytes written, or
/// `malformed` if a "%" is not followed by two hexadecimal digits. The rest of the buffer may be overwritten.
using PercentDecode = std::size_t(const std::byte* text, std::size_t count, std::byte* bytes);
inline constexpr std::size_t malformed = static_cast<std::size_t>(-1);

/// The two directions of one notation.
struct RadixKernels {
  Encode* encode;
  Decode* decode;
};

/// All kernels of one instruction set.
struct CodecKernels {
  const char* name;
  RadixKernels base64;
  RadixKernels base64URL;
  RadixKernels base32;
  RadixKernels base16;
  PercentEncode* percentEncode;
  PercentDecode* percentDecode;
};

/// The definition: every other set writes the same bytes and rejects the same input.
extern const CodecKernels scalarKernels;

/// The sets for particular instruction sets. Only those of the target processor's family exist.
///@{
extern const CodecKernels avx2Kernels;
extern const CodecKernels avx512vbmiKernels;
extern const CodecKernels neonKernels;
///@}

/// Writes each byte as eight binary digits and a space, nine characters in all.
Encode base2Encode;

}  // namespace VXKernels
