#include <VXFoundation/VXURLCoding.h>

#include "tests/support/CodecTests.h"

namespace {

class VXURLCodingTests : public CodecTest {};

TEST_P(VXURLCodingTests, RoundTripAsTheTableSays) {
  for (const auto& row : byteVectors("percent.tsv")) {
    const auto text = NSString::stringWithUTF8String(row[0]);
    EXPECT_EQ(bytesOf(VXURLEncodeString(text)), row[1]);
    EXPECT_EQ(bytesOf(VXURLEncodeData(dataOf(row[0]))), row[1]);
    EXPECT_EQ(bytesOf(VXURLDecodeString(VXURLEncodeString(text))), row[0]);
    EXPECT_EQ(bytesOf(VXURLDecodeData(dataOf(row[1]))), row[0]);
  }
}

TEST_P(VXURLCodingTests, DecodeOrRejectAsTheTableSays) {
  for (const auto& row : byteVectors("percent-decoding.tsv")) {
    EXPECT_EQ(bytesOf(VXURLDecodeData(dataOf(row[0]))), resultIn(row[1])) << row[0];
    EXPECT_EQ(bytesOf(VXURLDecodeString(NSString::stringWithUTF8String(row[0]))), resultIn(row[2])) << row[0];
  }
}

TEST_P(VXURLCodingTests, ReturnNilForNil) {
  EXPECT_FALSE(VXURLEncodeData(nullptr) || VXURLDecodeData(nullptr));
  EXPECT_FALSE(VXURLEncodeString(nullptr) || VXURLDecodeString(nullptr));
}

TEST_P(VXURLCodingTests, RoundTripEveryCodeUnit) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const auto text = NSString::stringWithCharacters(std::u16string{u'~', static_cast<char16_t>(unit)});
    const auto encoded = VXURLEncodeString(text);
    ASSERT_TRUE(encoded) << unit;
    // An unpaired surrogate has no UTF-8, and nil data gives the empty string.
    if (unit >= 0xD800 && unit < 0xE000)
      ASSERT_EQ(encoded->length(), 0u) << unit;
    else
      ASSERT_TRUE(text->isEqual(VXURLDecodeString(encoded))) << unit;
    ASSERT_TRUE(encoded->isASCII());
  }
}

TEST_P(VXURLCodingTests, PassTheMarkOfASecretOn) {
  const NSRefPtr<NSData> secret = NSData::dataWithBytes(std::as_bytes(std::span("p%w d", 5)), true);
  EXPECT_TRUE(VXURLEncodeData(secret)->holdsSecret());
  EXPECT_TRUE(VXURLDecodeData(VXURLEncodeData(secret))->holdsSecret());
  EXPECT_FALSE(VXURLEncodeData(dataOf("plain"))->holdsSecret());
}

INSTANTIATE_FOR_EVERY_SET(VXURLCodingTests);

}  // namespace
