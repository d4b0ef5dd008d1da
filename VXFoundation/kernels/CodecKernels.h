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

struct CodecKernels {
  const char* name;
  Encode* base64Encode;
  Decode* base64Decode;
  Encode* base32Encode;
  Decode* base32Decode;
  Encode* base16Encode;
  Decode* base16Decode;
  PercentEncode* percentEncode;
  PercentDecode* percentDecode;
};

/// The definition: what every other set must equal, byte for byte and refusal for refusal.
namespace scalar {
Encode base64Encode, base32Encode, base16Encode;
Decode base64Decode, base32Decode, base16Decode;
PercentEncode percentEncode;
PercentDecode percentDecode;

/// Writes each byte as eight binary digits and a space, nine characters in all.
Encode base2Encode;
}  // namespace scalar

namespace avx2 {
Encode base64Encode, base32Encode, base16Encode;
Decode base64Decode, base32Decode, base16Decode;
PercentEncode percentEncode;
PercentDecode percentDecode;
}  // namespace avx2

namespace avx512vbmi {
Encode base64Encode, base32Encode, base16Encode;
Decode base64Decode, base32Decode, base16Decode;
PercentEncode percentEncode;
PercentDecode percentDecode;
}  // namespace avx512vbmi

namespace neon {
Encode base64Encode, base32Encode, base16Encode;
Decode base64Decode, base32Decode, base16Decode;
PercentEncode percentEncode;
PercentDecode percentDecode;
}  // namespace neon

}  // namespace VXKernels
