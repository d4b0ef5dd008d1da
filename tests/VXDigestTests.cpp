#include <random>

#include "tests/support/Digests.h"
#include "tests/support/Support.h"
#include "tests/support/Vectors.h"

namespace {

/// The digest of a message whose pieces end at the places.
Bytes inPieces(const std::string& name, std::string_view message, const NSRef<NSData>& key,
               const std::vector<std::size_t>& ends) {
  VXDigest digest = digestNamed(name, key);
  std::size_t start = 0;
  for (const std::size_t end : ends) {
    digest.update(std::as_bytes(std::span(message.substr(start, end - start))));
    start = end;
  }
  digest.update(std::as_bytes(std::span(message.substr(start))));
  return bytesOf(digest.finish());
}

TEST(VXDigestTests, HoldTheVectorsOfTheStandardsPieceByPiece) {
  for (const auto& row : byteVectors("digests.tsv")) {
    VXDigest digest = digestNamed(row[0], dataOf(row[1]));
    for (int i = 0; i < std::stoi(row[3]); ++i) digest.update(std::as_bytes(std::span(row[2])));
    EXPECT_EQ(bytesOf(digest.finish()), bytesOf(VXBaseConversion::dataWithBase16String(text(row[4]))))
        << row[0] << " of " << row[2];
  }
}

TEST(VXDigestTests, EqualTheWholeDigestHoweverTheMessageIsSplit) {
  std::mt19937 random(1);
  std::string message(100000, '\0');
  for (char& byte : message) byte = static_cast<char>(random());
  for (const std::string name : digestNames)
    for (const std::size_t length : {0u, 1u, 55u, 56u, 63u, 64u, 65u, 130u, 100000u}) {
      const std::string_view start = std::string_view(message).substr(0, length);
      const auto key = dataOf(start.substr(0, length % 100));
      const Bytes whole = wholeDigest(name, *dataOf(start), key);
      for (std::size_t end = 0; end <= std::min<std::size_t>(length, 130); ++end)
        ASSERT_EQ(inPieces(name, start, key, {end}), whole) << name << " of " << length << " at " << end;
      std::vector<std::size_t> ends(random() % 50);
      for (std::size_t& end : ends) end = random() % (length + 1);
      std::sort(ends.begin(), ends.end());
      ASSERT_EQ(inPieces(name, start, key, ends), whole) << name << " of " << length;
    }
}

TEST(VXDigestTests, EndOnce) {
  VXDigest digest = VXDigest::SHA1();
  const VXDigest moved = std::move(digest);
  digest = VXDigest::MD5();
  digest.finish();
  EXPECT_EQ(raised([&] { digest.update({}); }), std::string(*NSInternalInconsistencyException));
  EXPECT_EQ(raised([&] { digest.finish(); }), std::string(*NSInternalInconsistencyException));
}

}  // namespace
