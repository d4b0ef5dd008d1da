#pragma once

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

/// Tests of the operations on each set of kernels that the machine has.
class CodecTest : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override { ASSERT_TRUE(VXCodecKernelsUse(GetParam())); }
  void TearDown() override { VXCodecKernelsUse(VXCodecKernelsAvailable().back()); }
};

#define INSTANTIATE_FOR_EVERY_SET(Tests)                                                  \
  INSTANTIATE_TEST_SUITE_P(EverySet, Tests, testing::ValuesIn(VXCodecKernelsAvailable()), \
                           [](const auto& param) { return param.param; })

/// What a cell of results says: "=" and the bytes, or absent.
inline Bytes resultIn(const std::string& cell) { return cell == "absent" ? Bytes() : cell.substr(1); }
