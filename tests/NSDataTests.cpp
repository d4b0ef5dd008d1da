#include <gtest/gtest.h>

#include "tests/support/Bytes.h"

TEST(NSData, AddedBytesAreZero) {
  const auto data = NSMutableData::dataWithBytes("abc", 3);
  data->setLength(1);
  data->setLength(3);
  EXPECT_EQ(bytesOf(data), std::string("a\0\0", 3));
}
