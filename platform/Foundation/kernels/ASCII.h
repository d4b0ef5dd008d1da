#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <Foundation/kernels/UnicodeDispatch.h>

/// What short strings need most, inline: for 8 to 64 bytes, calling a kernel takes longer than its work.
namespace NSKernels {

constexpr bool isShort(std::string_view bytes) { return bytes.size() >= 8 && bytes.size() <= 64; }

/// Calls `visit` with the offset of each part of `size` bytes. The last one, which may overlap the one
/// before, ends where the bytes end.
template <std::size_t size, class Visit>
void forEachPart(std::size_t count, Visit visit) {
  for (std::size_t i = 0; i < count - size; i += size) visit(i);
  visit(count - size);
}

/// Whether all bytes are ASCII.
inline bool isASCII(std::string_view bytes) {
  if (!isShort(bytes)) return unicode().asciiBytes(bytes.data(), bytes.size()) == bytes.size();
  std::uint64_t all = 0;
  forEachPart<sizeof all>(bytes.size(), [&](std::size_t i) {
    std::uint64_t word;
    std::memcpy(&word, bytes.data() + i, sizeof word);
    all |= word;
  });
  return (all & 0x8080'8080'8080'8080) == 0;
}

template <std::size_t size>
void copyParts(std::string_view bytes, char* to) {
  forEachPart<size>(bytes.size(), [&](std::size_t i) { std::memcpy(to + i, bytes.data() + i, size); });
}

/// Copies the bytes to other memory.
inline void copy(std::string_view bytes, char* to) {
  if (!isShort(bytes))
    std::copy(bytes.begin(), bytes.end(), to);
  else if (bytes.size() < 16)
    copyParts<8>(bytes, to);
  else
    copyParts<16>(bytes, to);
}

}  // namespace NSKernels
