#include <VXFoundation/NSData+CXHashing.h>
#include <VXFoundation/NSData+VXBaseConversion.h>
#include <openssl/hmac.h>
#include <unistd.h>

#include <algorithm>
#include <random>

#include "tests/support/Digests.h"
#include "tests/support/Support.h"
#include "tests/support/Threads.h"
#include "tests/support/Vectors.h"

namespace {

using namespace CXHashing;

std::string opensslHMAC(const NSData& data, const NSData& key) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned length = 0;
  HMAC(EVP_sha1(), key.bytes().data(), static_cast<int>(key.length()),
       reinterpret_cast<const unsigned char*>(data.bytes().data()), data.length(), digest, &length);
  return {reinterpret_cast<char*>(digest), length};
}

TEST(CXHashingTests, MatchTheVectorsOfTheStandards) {
  for (const auto& row : byteVectors("digests.tsv")) {
    std::string message;
    for (int i = 0; i < std::stoi(row[3]); ++i) message += row[2];
    const auto data = dataOf(message), key = dataOf(row[1]);
    const Bytes expected = bytesOf(VXBaseConversion::dataWithBase16String(text(row[4])));
    EXPECT_EQ(wholeDigest(row[0], *data, key), expected) << row[0] << " of " << row[2];
  }
}

TEST(CXHashingTests, HMACAgreesWithOpenSSLAtEveryShortLengthOnEveryThread) {
  onThreads(4, [](std::size_t thread) {
    std::mt19937 random(static_cast<unsigned>(thread));
    std::string bytes(400, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    for (std::size_t length = 0; length <= 300; ++length) {
      const auto data = dataOf(std::string_view(bytes).substr(length / 3, length));
      for (const std::size_t keyLength : {std::size_t{0}, std::size_t{1}, length % 80, std::size_t{63},
                                          std::size_t{64}, std::size_t{65}, length}) {
        const auto key = dataOf(std::string_view(bytes).substr(0, keyLength));
        ASSERT_EQ(bytesOf(HMAC_SHA1_WithSecretKey(*data, key)), opensslHMAC(*data, *key))
            << length << " " << keyLength;
      }
    }
  });
}

TEST(CXHashingDeathTest, AbortsForANilKey) {
  EXPECT_DEATH(HMAC_SHA1_WithSecretKey(*dataOf("message"), nullptr), "secret key is nil");
}

void printDigests(const char* when) {
  const auto data = dataOf("abc");
  const auto digests = {MD5Hash(*data), SHA1Hash(*data), HMAC_SHA1_WithSecretKey(*data, data)};
  std::fprintf(stderr, "%s", when);
  for (const auto& digest : digests)
    std::fprintf(stderr, " %02x", std::to_integer<unsigned>(digest->bytes()[0]));
  std::fputs("; ", stderr);
}

struct PrintsDigestsAtItsEnd {
  const char* when;
  ~PrintsDigestsAtItsEnd() { printDigests(when); }
};

/// Ends the process after a digest, with more of them in what runs at its end.
[[noreturn]] void digestAndExit() {
  static const PrintsDigestsAtItsEnd late{"static"};
  thread_local const PrintsDigestsAtItsEnd ofThread{"thread"};
  static_cast<void>(ofThread.when);
  std::atexit([] { printDigests("handler"); });
  SHA1Hash(*dataOf("abc"));
  std::exit(0);
}

TEST(CXHashingDeathTest, WorkUntilTheProcessHasEnded) {
  const char expected[] = "thread 90 a9 5b; handler 90 a9 5b; static 90 a9 5b; $";
  EXPECT_EXIT(digestAndExit(), testing::ExitedWithCode(0), expected);
  EXPECT_EXIT(std::thread(digestAndExit).join(), testing::ExitedWithCode(0), expected);
}

/// MD5 and SHA-1 of whole data take the length modulo 2^32; HMAC, and digests in pieces, take all of it.
TEST(CXHashingTests, OnlyWholeDigestsTruncateLengthsOfFourGibibytes) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer needs five times the memory";
#endif
  constexpr std::size_t fourGibibytes = std::size_t{1} << 32;
  const auto available =
      static_cast<std::size_t>(sysconf(_SC_AVPHYS_PAGES)) * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  if (available < fourGibibytes + (fourGibibytes >> 2)) GTEST_SKIP() << "needs 5 GiB of free memory";
  // Pages that were never written to take no memory and no time.
  const NSRef<NSMutableData> data = NSDynamicCast<NSMutableData>(NSMutableData::dataWithMaximumLength(
      fourGibibytes + 3, [](std::span<std::byte> bytes) { return bytes.size(); }));
  data->setLength(fourGibibytes);
  EXPECT_EQ(bytesOf(MD5Hash(*data)), bytesOf(MD5Hash(*NSData::data())));
  data->setLength(fourGibibytes + 3);
  std::ranges::fill(data->mutableBytes().first(4096), std::byte{});  // the address sanitizer has filled them
  data->mutableBytes()[1] = std::byte{7};
  const auto start = NSData::dataWithBytes(data->bytes().first(3));
  EXPECT_EQ(bytesOf(MD5Hash(*data)), bytesOf(MD5Hash(*start)));
  EXPECT_EQ(bytesOf(SHA1Hash(*data)), bytesOf(SHA1Hash(*start)));
  VXDigest uncut = VXDigest::SHA1();
  uncut.update(data->bytes());
  // By sha1sum: (printf '\0\7'; head -c 4294967297 /dev/zero) | sha1sum
  EXPECT_TRUE(uncut.finish()->isEqual(
      VXBaseConversion::dataWithBase16String("4b4a516c8e81e8b8145821d618e47546cbddd52e")));
  const auto key = dataOf("key");
  EXPECT_EQ(bytesOf(HMAC_SHA1_WithSecretKey(*data, key)), opensslHMAC(*data, *key));
}

}  // namespace
