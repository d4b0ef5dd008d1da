#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "VXFoundation/kernels/CodecDispatch.h"

/// What the tests of the kernels have in common: the sets that this machine supports, and input.
namespace KernelsTests {

using Set = const VXKernels::CodecKernels*;

inline auto everySet() {
  const auto available = VXKernels::availableKernels();
  return ::testing::ValuesIn(available.begin(), available.end());
}

/// The longest input of the tests at every alignment: more than three of the widest vectors.
inline constexpr std::size_t threeWidths = 3 * 64 + 9;
inline constexpr std::size_t alignments = 64;

inline std::vector<std::byte> randomBytes(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<std::byte> bytes(count);
  for (auto& byte : bytes) byte = static_cast<std::byte>(random());
  return bytes;
}

inline std::string_view asText(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace KernelsTests
