#pragma once

#include <VXFoundation/VXCodecKernels.h>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"
#include "tests/support/Vectors.h"

/// Tests that run with each set of kernels that the machine supports.
class CodecTest : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override { ASSERT_TRUE(VXCodecKernelsUse(GetParam())); }
  void TearDown() override { VXCodecKernelsUse(VXCodecKernelsAvailable().back()); }
};

#define INSTANTIATE_FOR_EVERY_SET(Tests)                                                  \
  INSTANTIATE_TEST_SUITE_P(EverySet, Tests, testing::ValuesIn(VXCodecKernelsAvailable()), \
                           [](const auto& param) { return param.param; })

/// Calls `check` with every string of `length` units of the alphabet.
template <class Unit = char>
void forEveryString(std::basic_string_view<Unit> alphabet, std::size_t length, const auto& check) {
  std::vector<std::size_t> places(length);
  std::basic_string<Unit> text(length, alphabet[0]);
  for (bool more = true; more;) {
    check(text);
    std::size_t i = 0;
    for (; i < length && ++places[i] == alphabet.size(); ++i) places[i] = 0, text[i] = alphabet[0];
    if ((more = i < length)) text[i] = alphabet[places[i]];
  }
}

/// Returns the result in a cell: "=" and the bytes, or "nil".
inline Bytes resultIn(const std::string& cell) { return cell == "nil" ? Bytes() : cell.substr(1); }
