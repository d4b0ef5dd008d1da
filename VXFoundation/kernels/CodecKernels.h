#pragma once

#include <cstddef>

/// The inner loops of the codecs, one set of them for each instruction set. All are pure, and safe on
/// any thread.
///
/// They take pointers and counts: a kernel file is compiled for an instruction set that the machine may
/// lack, so it must not emit an inline function of a header that the linker could then pick for all.
namespace VXKernels {

/// Writes the digits of `count` bytes, and the padding of the last group.
using Encode = void(const std::byte* bytes, std::size_t count, char* text);

/// Writes the `count * bits / 8` bytes of `count` digits, padding taken off; bits of the last digit that
/// fill no byte are dropped. False for anything that is no digit; what was written then means nothing.
using Decode = bool(const char* digits, std::size_t count, std::byte* bytes);

/// Writes bytes percent-encoded (RFC 3986, section 2.1), with room for three times `count`; gives the
/// number written. What lies behind them within that room may be overwritten.
using PercentEncode = std::size_t(const std::byte* bytes, std::size_t count, std::byte* text);

/// Writes percent-decoded bytes, with room for `count`; gives the number written, or `malformed` for a
/// "%" without two hexadecimal digits after it. What lies behind within that room may be overwritten.
using PercentDecode = std::size_t(const std::byte* text, std::size_t count, std::byte* bytes);
inline constexpr std::size_t malformed = static_cast<std::size_t>(-1);

/// The two directions of one notation.
struct RadixKernels {
  Encode* encode;
  Decode* decode;
};

/// All that one instruction set offers.
struct CodecKernels {
  const char* name;
  RadixKernels base64;
  RadixKernels base32;
  RadixKernels base16;
  PercentEncode* percentEncode;
  PercentDecode* percentDecode;
};

/// The definition: every other set equals it, byte for byte and refusal for refusal.
extern const CodecKernels scalarKernels;

/// The sets for particular instruction sets. Only those of the processor that the library is built for exist.
///@{
extern const CodecKernels avx2Kernels;
extern const CodecKernels avx512vbmiKernels;
extern const CodecKernels neonKernels;
///@}

/// Writes each byte as eight binary digits and a space, nine characters in all.
Encode base2Encode;

}  // namespace VXKernels
