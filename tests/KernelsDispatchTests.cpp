#include "tests/support/KernelsTests.h"

namespace {

using namespace VXKernels;

TEST(KernelsDispatch, StartsWithTheLastSetAndAcceptsOnlyAvailableNames) {
  EXPECT_STREQ(availableKernels().front()->name, "scalar");
  EXPECT_EQ(&kernels(), availableKernels().back());
  for (const CodecKernels* set : availableKernels()) {
    EXPECT_TRUE(NSKernels::useSet(set->name));
    EXPECT_EQ(&kernels(), set);
    EXPECT_FALSE(NSKernels::useSet("abacus"));
    EXPECT_FALSE(NSKernels::useSet(""));
    EXPECT_EQ(&kernels(), set) << "a refused name changes nothing";
  }
}

}  // namespace
