#pragma once

// Eight digits of `bits` bits are `bits` bytes, so that every 64-bit lane holds whole groups in each
// notation. Encoding moves these bytes into a lane, most significant last, extracts the digits from it and
// looks them up; decoding reverses these steps.
#include <cstdint>

#include <VXFoundation/kernels/CodecKernels.h>
#include <VXFoundation/kernels/avx512vbmi/Block.h>

namespace VXKernels {
namespace {

/// Returns the bytes of each lane, `bits` of them, in the order that makes the lane the number that they
/// represent. The order is its own inverse, except for the places of the lanes' bytes.
constexpr Block laneFromBytes(std::size_t bits) {
  Block order{};
  for (std::size_t i = 0; i < width; ++i)
    if (i % 8 < bits) order.at[i] = static_cast<unsigned char>(i / 8 * bits + bits - 1 - i % 8);
  return order;
}

constexpr Block bytesFromLane(std::size_t bits, std::size_t group) {
  const std::size_t lane = group * 8 / bits;
  Block order{};
  for (std::size_t i = 0; i < width / lane * group; ++i)
    order.at[i] = static_cast<unsigned char>(i / group * lane + group - 1 - i % group);
  return order;
}

/// Returns where the digits of a lane begin, counted in bits from its low end.
constexpr Block digitShifts(std::size_t bits) {
  Block shifts{};
  for (std::size_t i = 0; i < width; ++i) shifts.at[i] = static_cast<unsigned char>(bits * (7 - i % 8));
  return shifts;
}

template <const Radix& radix>
__m512i charactersOf(__m512i bytes) {
  static constexpr Block lanes = laneFromBytes(radix.bits), shifts = digitShifts(radix.bits),
                         characters = digitCharacters(radix);
  const __m512i lane = _mm512_permutexvar_epi8(lanes.vector(), bytes);
  const __m512i digits = _mm512_multishift_epi64_epi8(shifts.vector(), lane);
  return _mm512_permutexvar_epi8(digits, characters.vector());
}

/// Encodes a block of at most 64 digits, including padding, and touches nothing beyond it.
template <const Radix& radix>
void encodePart(const std::byte* bytes, std::size_t count, char* text) {
  const std::size_t digits = (count * 8 + radix.bits - 1) / radix.bits;
  const std::size_t groups = (count + radix.groupBytes - 1) / radix.groupBytes;
  const __m512i characters = charactersOf<radix>(_mm512_maskz_loadu_epi8(firstBytes(count), bytes));
  const __m512i padded = _mm512_mask_blend_epi8(firstBytes(digits), _mm512_set1_epi8(_padding), characters);
  _mm512_mask_storeu_epi8(text, firstBytes(groups * radix.groupDigits), padded);
}

template <const Radix& radix>
void encode(const std::byte* bytes, std::size_t count, char* text) {
  constexpr std::size_t step = 8 * radix.bits;
  // Stores that straddle cache lines cost a third of the speed: long output first advances to a line's start.
  const std::size_t toLine = -reinterpret_cast<std::uintptr_t>(text) % width;
  if (count >= 8 * width && toLine % radix.groupDigits == 0) {
    const std::size_t taken = toLine / radix.groupDigits * radix.groupBytes;
    encodePart<radix>(bytes, taken, text);
    count -= taken;
    bytes += taken;
    text += toLine;
  }
  for (; count >= width; count -= step, bytes += step, text += width)
    _mm512_storeu_si512(text, charactersOf<radix>(_mm512_loadu_si512(bytes)));
  for (; count > step; count -= step, bytes += step, text += width) encodePart<radix>(bytes, step, text);
  if (count > 0) encodePart<radix>(bytes, count, text);
}

/// Joins neighbouring digits until a lane of 16, 32 or 64 bits holds a group of whole bytes.
template <const Radix& radix>
__m512i bytesOf(__m512i values) {
  constexpr int weight = 1 << radix.bits;
  constexpr std::size_t group = radix.bits == 4 ? 1 : radix.bits == 6 ? 3 : 5;
  static constexpr Block order = bytesFromLane(radix.bits, group);
  __m512i lanes = _mm512_maddubs_epi16(values, _mm512_set1_epi16(0x100 | weight));
  if constexpr (radix.bits > 4)
    lanes = _mm512_madd_epi16(lanes, _mm512_set1_epi32(0x10000 | weight * weight));
  if constexpr (radix.bits == 5)
    lanes = _mm512_or_si512(_mm512_slli_epi64(lanes, 20), _mm512_srli_epi64(lanes, 32));
  return _mm512_permutexvar_epi8(order.vector(), lanes);
}

template <const Radix& radix>
bool decode(const char* digits, std::size_t count, std::byte* bytes) {
  constexpr std::size_t step = 8 * radix.bits;
  __m512i faults = _mm512_setzero_si512();
  const auto decodeBlock = [&faults](__m512i characters) {
    const __m512i values = valuesOf<radix>(characters);
    faults = _mm512_ternarylogic_epi64(faults, characters, values, 0xFE);
    return bytesOf<radix>(values);
  };
  for (; count * radix.bits / 8 >= width; count -= width, digits += width, bytes += step)
    _mm512_storeu_si512(bytes, decodeBlock(_mm512_loadu_si512(digits)));
  while (count > 0) {
    const std::size_t taken = count < width ? count : width;
    const __m512i zeros = _mm512_set1_epi8(radix.alphabet[0]);
    const __m512i characters = _mm512_mask_loadu_epi8(zeros, firstBytes(taken), digits);
    _mm512_mask_storeu_epi8(bytes, firstBytes(taken * radix.bits / 8), decodeBlock(characters));
    count -= taken;
    digits += taken;
    bytes += step;
  }
  return _mm512_movepi8_mask(faults) == 0;
}

}  // namespace
}  // namespace VXKernels
