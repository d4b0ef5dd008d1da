#pragma once

// Runs without escapes are processed sixteen bytes at a time. The scalar kernel encodes sixteen bytes if one
// of them is to be escaped, and decodes the escapes.
#include <cstdint>

#include <VXFoundation/kernels/CodecKernels.h>
#include <VXFoundation/kernels/Percent.h>
#include <VXFoundation/kernels/neon/Vector.h>

namespace VXKernels {
namespace {

inline uint8x16_t load(const std::byte* from) {
  return vld1q_u8(reinterpret_cast<const std::uint8_t*>(from));
}
inline void store(std::byte* to, uint8x16_t bytes) { vst1q_u8(reinterpret_cast<std::uint8_t*>(to), bytes); }

/// For each of the 128 characters, 255 if it stands for itself.
struct Marks {
  std::uint8_t of[128];
};

constexpr Marks unreservedMarks() {
  Marks marks{};
  const CharacterSet unreserved = unreservedCharacters();
  for (unsigned c = 0; c < 128; ++c) marks.of[c] = unreserved.has[c] ? 255 : 0;
  return marks;
}

inline bool allUnreserved(uint8x16_t bytes) {
  static constexpr Marks marks = unreservedMarks();
  // Beyond its table, the first look-up returns 0, and the second keeps what the first one found.
  const uint8x16_t found = vqtbl4q_u8(vld1q_u8_x4(marks.of), bytes);
  return vminvq_u8(vqtbx4q_u8(found, vld1q_u8_x4(marks.of + 64), vsubq_u8(bytes, vdupq_n_u8(64)))) != 0;
}

/// Returns the number of bytes before the first percent sign, at most sixteen.
inline std::size_t beforeEscape(uint8x16_t characters) {
  const uint8x16_t signs = vceqq_u8(characters, vdupq_n_u8('%'));
  // Takes four bits of each byte, which make a number of 64 bits.
  const std::uint64_t mask =
      vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(signs), 4)), 0);
  return mask == 0 ? width : static_cast<std::size_t>(__builtin_ctzll(mask)) / 4;
}

inline std::size_t percentEncode(const std::byte* bytes, std::size_t count, std::byte* text) {
  std::byte* end = text;
  for (; count >= width; bytes += width, count -= width) {
    const uint8x16_t block = load(bytes);
    if (allUnreserved(block)) {
      store(end, block);
      end += width;
    } else {
      end += scalarKernels.percentEncode(bytes, width, end);
    }
  }
  return static_cast<std::size_t>(end - text) + scalarKernels.percentEncode(bytes, count, end);
}

inline std::size_t percentDecode(const std::byte* text, std::size_t count, std::byte* bytes) {
  std::byte* end = bytes;
  while (count >= width + 2) {
    const uint8x16_t block = load(text);
    const std::size_t run = beforeEscape(block);
    store(end, block);
    std::size_t taken = run;
    end += run;
    for (; taken < width && text[taken] == std::byte{'%'}; taken += 3)
      if (scalarKernels.percentDecode(text + taken, 3, end++) != 1) return malformed;
    text += taken;
    count -= taken;
  }
  const std::size_t rest = scalarKernels.percentDecode(text, count, end);
  return rest == malformed ? malformed : static_cast<std::size_t>(end - bytes) + rest;
}

}  // namespace
}  // namespace VXKernels
