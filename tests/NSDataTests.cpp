#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <unordered_set>

#include "tests/support/Bytes.h"
#include "tests/support/Command.h"

TEST(NSData, AddedBytesAreZero) {
  const auto data = NSMutableData::dataWithBytes("abc", 3);
  data->setLength(1);
  data->setLength(3);
  EXPECT_EQ(bytesOf(data), std::string("a\0\0", 3));
}

/// Every bit and the length count, wherever the bytes are in a block and after it.
TEST(NSData, HashesOfDifferentBytesDiffer) {
  std::unordered_set<std::size_t> hashes;
  std::size_t count = 0;
  for (std::size_t length = 0; length <= 150; ++length) {
    const NSRef<NSMutableData> data = NSMutableData::dataWithLength(length);
    ++count, hashes.insert(data->hash());
    for (std::size_t bit = 0; bit < 8 * length; ++bit) {
      const std::byte flip{static_cast<unsigned char>(1U << bit % 8)};
      data->mutableBytes()[bit / 8] ^= flip;
      ++count, hashes.insert(data->hash());
      data->mutableBytes()[bit / 8] ^= flip;
    }
  }
  EXPECT_EQ(hashes.size(), count);
}

TEST(NSData, HashesDifferFromProcessToProcess) {
  constexpr const char* name = "VX_PRINTS_A_HASH";
  if (std::getenv(name)) {
    std::printf("hash %zu\n", NSData::data()->hash());
    return;
  }
  const std::string program = std::filesystem::read_symlink("/proc/self/exe");
  const std::string command =
      std::string(name) + "=1 '" + program + "' --gtest_filter=*FromProcessToProcess | grep '^hash '";
  EXPECT_NE(outputOf(command), outputOf(command));
}
