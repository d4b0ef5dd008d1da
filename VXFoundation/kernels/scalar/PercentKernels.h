#pragma once

#include <VXFoundation/kernels/CodecKernels.h>
#include <VXFoundation/kernels/Percent.h>
#include <VXFoundation/kernels/scalar/RadixKernels.h>

namespace VXKernels {
namespace {

inline std::size_t percentEncode(const std::byte* bytes, std::size_t count, std::byte* text) {
  static constexpr CharacterSet unreserved = unreservedCharacters();
  std::byte* end = text;
  for (std::size_t i = 0; i < count; ++i) {
    const auto byte = std::to_integer<unsigned>(bytes[i]);
    if (unreserved.has[byte]) {
      *end++ = bytes[i];
    } else {
      *end++ = std::byte{'%'};
      *end++ = static_cast<std::byte>(_base16Alphabet[byte >> 4]);
      *end++ = static_cast<std::byte>(_base16Alphabet[byte & 15]);
    }
  }
  return static_cast<std::size_t>(end - text);
}

inline std::size_t percentDecode(const std::byte* text, std::size_t count, std::byte* bytes) {
  std::byte* end = bytes;
  for (std::size_t i = 0; i < count; ++end) {
    if (text[i] != std::byte{'%'}) {
      *end = text[i++];
      continue;
    }
    const char* const digits = reinterpret_cast<const char*>(text + i + 1);
    if (count - i < 3 || !decode<base16>(digits, 2, end)) return malformed;
    i += 3;
  }
  return static_cast<std::size_t>(end - bytes);
}

}  // namespace
}  // namespace VXKernels
