#include <Foundation/NSMutableString.h>

#include <algorithm>

#include "tests/support/CodecTests.h"
#include "tests/support/Notations.h"

namespace {

class VXBaseConversionTests : public CodecTest {};

const Notation& notationNamed(const std::string& name) {
  return *std::find_if(std::begin(notations), std::end(notations), [&](auto& n) { return n.name == name; });
}

/// Expects the result that the rules give; no notation has a character beyond ASCII.
void expectDecodedByRule(const Notation& notation, std::u16string_view units) {
  std::string text;
  for (const char16_t unit : units) text.push_back(static_cast<char>(std::min<char16_t>(unit, 128)));
  ASSERT_EQ(bytesOf(notation.decode(NSString::stringWithCharacters(units))), notation.decodedByRule(text))
      << text;
}

TEST_P(VXBaseConversionTests, RoundTripTheVectorsOfTheStandard) {
  for (const auto& row : byteVectors("rfc4648.tsv")) {
    const Notation& notation = notationNamed(row[0]);
    const auto text = notation.encode(*dataOf(row[1]));
    EXPECT_EQ(std::string(*text), row[2]);
    EXPECT_TRUE(text->isASCII());
    EXPECT_EQ(bytesOf(notation.decode(text)), row[1]);
  }
}

TEST_P(VXBaseConversionTests, DecodeOrRejectAsTheTableSays) {
  for (const auto& row : byteVectors("base-decoding.tsv")) {
    const auto fixed = text(row[1]);
    for (const NSRef<NSString>& each : {fixed, NSRef<NSString>(fixed->mutableCopy())})
      EXPECT_EQ(bytesOf(notationNamed(row[0]).decode(each)), resultIn(row[2])) << row[0] << " " << row[1];
  }
  for (const Notation& notation : notations) EXPECT_FALSE(notation.decode(nullptr));
}

TEST_P(VXBaseConversionTests, FollowTheRulesForEveryStringOverAHostileAlphabet) {
  const auto follows = [](const Notation& notation) {
    return [&notation](const std::u16string& text) { expectDecodedByRule(notation, text); };
  };
  for (std::size_t length = 0; length <= 4; ++length) {
    forEveryString<char16_t>(u"AQz8/=\n-\u00E9\u0141", length, follows(notations[0]));
    forEveryString<char16_t>(u"AQz8-_=/+\u00E9\u0141", length, follows(notations[3]));
    forEveryString<char16_t>(u"09afAFgG=x \u0130\uFF11", length, follows(notations[2]));
  }
  forEveryString<char16_t>(u"A7=\u00E9", 8, follows(notations[1]));
  forEveryString<char16_t>(u"Ba=\n", 8, follows(notations[1]));
  for (const unsigned length : {12u, 16u}) forEveryString<char16_t>(u"B=", length, follows(notations[0]));
  for (const unsigned length : {7u, 9u, 16u}) forEveryString<char16_t>(u"B=", length, follows(notations[1]));
}

TEST_P(VXBaseConversionTests, RenderEveryByteInBinaryDigits) {
  std::string bytes, expected;
  for (unsigned byte = 0; byte < 256; ++byte) {
    bytes.push_back(static_cast<char>(byte));
    expected += std::bitset<8>(byte).to_string() + " ";
  }
  EXPECT_EQ(bytesOf(VXBaseConversion::base2String(*dataOf(bytes))), expected);
  EXPECT_EQ(VXBaseConversion::base2String(*NSData::data())->length(), 0U);
}

TEST_P(VXBaseConversionTests, PassTheMarkOfASecretOn) {
  for (const bool secret : {true, false}) {
    const auto data = NSData::dataWithBytes(std::as_bytes(std::span("hunter", 6)), secret);
    for (const Notation& notation : notations) {
      EXPECT_EQ(notation.encode(*data)->holdsSecret(), secret);
      EXPECT_EQ(notation.decode(notation.encode(*data))->holdsSecret(), secret);
    }
  }
}

INSTANTIATE_FOR_EVERY_SET(VXBaseConversionTests);

}  // namespace
