#include "VXFoundation/NSData+VXBaseConversion.h"

#include <Foundation/NSMutableString.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <optional>
#include <set>

#include "Support.h"
#include "VXFoundation/VXCodecKernels.h"

namespace {

using namespace VXBaseConversion;

struct Notation {
  const char* name;
  std::string alphabet;
  std::size_t bits, group;
  std::set<std::size_t> paddings;
  Ref<NSString> (*encode)(const NSData&);
  RefPtr<NSData> (*decode)(Text);
};

const Notation notations[] = {
    {"base64",
     "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/",
     6,
     4,
     {0, 1, 2},
     base64String,
     dataWithBase64String},
    {"base32", "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567", 5, 8, {0, 1, 3, 4, 6}, base32String, dataWithBase32String},
    {"base16", "0123456789ABCDEF", 4, 2, {0}, base16String, dataWithBase16String},
};

using Bytes = std::optional<std::string>;

Ref<NSData> dataOf(std::string_view bytes) { return NSData::dataWithBytes(bytes.data(), bytes.size()); }

Bytes bytesOf(const RefPtr<NSData>& data) {
  if (!data) return {};
  return std::string(reinterpret_cast<const char*>(data->bytes().data()), data->length());
}

/// The rules, read one after the other over strings of binary digits.
Bytes decodedByRule(std::u16string text, const Notation& notation) {
  if (text.size() % notation.group != 0) return {};
  std::size_t padding = 0;
  for (; !text.empty() && text.back() == u'='; text.pop_back()) ++padding;
  if (!notation.paddings.contains(padding)) return {};
  std::string bits, bytes;
  for (const char16_t unit : text) {
    const bool lower = notation.bits == 4 && unit >= u'a' && unit <= u'f';
    const auto digit =
        unit < 128 ? notation.alphabet.find(static_cast<char>(lower ? unit - 32 : unit)) : std::string::npos;
    if (digit == std::string::npos) return {};
    bits += std::bitset<8>(digit).to_string().substr(8 - notation.bits);
  }
  for (std::size_t i = 0; i + 8 <= bits.size(); i += 8)
    bytes.push_back(static_cast<char>(std::bitset<8>(bits, i, 8).to_ulong()));
  return bytes;
}

std::string encodedByRule(std::string_view bytes, const Notation& notation) {
  std::string bits, text;
  for (const char byte : bytes) bits += std::bitset<8>(static_cast<unsigned char>(byte)).to_string();
  while (bits.size() % notation.bits != 0) bits.push_back('0');
  for (std::size_t i = 0; i < bits.size(); i += notation.bits)
    text.push_back(notation.alphabet[std::bitset<8>(bits, i, notation.bits).to_ulong()]);
  while (text.size() % notation.group != 0) text.push_back('=');
  return text;
}

class VXBaseConversionTests : public ::testing::TestWithParam<std::string> {
 protected:
  void SetUp() override { ASSERT_TRUE(VXCodecKernelsUse(GetParam())); }
  void TearDown() override { VXCodecKernelsUse(VXCodecKernelsAvailable().back()); }
};

const Notation& notationNamed(const std::string& name) {
  return *std::find_if(std::begin(notations), std::end(notations), [&](auto& n) { return n.name == name; });
}

TEST_P(VXBaseConversionTests, GoBothWaysWithTheVectorsOfTheStandard) {
  for (const auto& row : byteVectors("rfc4648.tsv")) {
    const Notation& notation = notationNamed(row[0]);
    const auto text = notation.encode(*dataOf(row[1]));
    EXPECT_EQ(std::string(*text), row[2]);
    EXPECT_TRUE(text->isASCII());
    EXPECT_EQ(bytesOf(notation.decode(text)), row[1]);
  }
}

TEST_P(VXBaseConversionTests, DecodeOrRefuseAsTheTableSays) {
  for (const auto& row : byteVectors("base-decoding.tsv")) {
    const Bytes expected = row[2] == "absent" ? Bytes() : row[2].substr(1);
    const auto text = NSString::stringWithUTF8String(row[1]);
    ASSERT_TRUE(text) << row[1];
    EXPECT_EQ(bytesOf(notationNamed(row[0]).decode(text)), expected) << row[0] << " " << row[1];
    EXPECT_EQ(bytesOf(notationNamed(row[0]).decode(text->mutableCopy())), expected) << "growable " << row[1];
  }
}

TEST_P(VXBaseConversionTests, TellNilFromTheEmptyText) {
  for (const Notation& notation : notations) {
    EXPECT_FALSE(notation.decode(nullptr));
    EXPECT_EQ(bytesOf(notation.decode(NSString::string())), "");
    EXPECT_EQ(notation.encode(*NSData::data())->length(), 0u);
  }
  EXPECT_EQ(base2String(*NSData::data())->length(), 0u);
}

/// Every text of `length` units of the alphabet.
void forEveryText(std::u16string_view alphabet, std::size_t length, const auto& check) {
  std::vector<std::size_t> places(length);
  std::u16string text(length, alphabet[0]);
  for (bool more = true; more;) {
    check(text);
    std::size_t i = 0;
    for (; i < length && ++places[i] == alphabet.size(); ++i) places[i] = 0, text[i] = alphabet[0];
    if ((more = i < length)) text[i] = alphabet[places[i]];
  }
}

TEST_P(VXBaseConversionTests, HoldTheRulesForEveryTextOverAHostileAlphabet) {
  const auto holdsRules = [](const Notation& notation) {
    return [&notation](const std::u16string& text) {
      const auto found = bytesOf(notation.decode(NSString::stringWithCharacters(text)));
      ASSERT_EQ(found, decodedByRule(text, notation)) << std::string(text.begin(), text.end());
    };
  };
  for (std::size_t length = 0; length <= 4; ++length) {
    forEveryText(u"AQz8/=\n-\u00E9\u0141", length, holdsRules(notations[0]));
    forEveryText(u"09afAFgG=x \u00E9\uFF11", length, holdsRules(notations[2]));
  }
  forEveryText(u"A7=\u00E9", 8, holdsRules(notations[1]));
  forEveryText(u"Ba=\n", 8, holdsRules(notations[1]));
  for (const unsigned length : {12u, 16u}) forEveryText(u"B=", length, holdsRules(notations[0]));
  for (const unsigned length : {7u, 9u, 16u}) forEveryText(u"B=", length, holdsRules(notations[1]));
}

TEST_P(VXBaseConversionTests, TakeEveryUnitInEitherPlaceOfABase16Pair) {
  for (unsigned unit = 0; unit < 0x10000; ++unit)
    for (const char16_t other : {u'0', u'f', u'=', u'\u0130'})
      for (const auto& text : {std::u16string{static_cast<char16_t>(unit), other},
                               std::u16string{other, static_cast<char16_t>(unit)}})
        ASSERT_EQ(bytesOf(dataWithBase16String(NSString::stringWithCharacters(text))),
                  decodedByRule(text, notations[2]))
            << unit;
}

TEST_P(VXBaseConversionTests, GoBothWaysWithEveryByteAndPairOfBytes) {
  for (const Notation& notation : notations)
    for (unsigned pair = 0; pair < 0x10000 + 0x100; ++pair) {
      std::string bytes(1, static_cast<char>(pair));
      if (pair < 0x10000) bytes.push_back(static_cast<char>(pair >> 8));
      const auto text = notation.encode(*dataOf(bytes));
      ASSERT_EQ(std::string(*text), encodedByRule(bytes, notation)) << notation.name;
      ASSERT_EQ(bytesOf(notation.decode(text)), bytes) << notation.name;
    }
}

TEST_P(VXBaseConversionTests, RenderEveryByteInBinaryDigits) {
  std::string bytes, expected;
  for (unsigned byte = 0; byte < 256; ++byte) {
    bytes.push_back(static_cast<char>(byte));
    expected += std::bitset<8>(byte).to_string() + " ";
  }
  EXPECT_EQ(std::string(*base2String(*dataOf(bytes))), expected);
}

TEST_P(VXBaseConversionTests, KeepSecretsSecret) {
  const auto secret = NSData::dataWithBytes(std::as_bytes(std::span("hunter", 6)), true);
  for (const Notation& notation : notations) {
    EXPECT_TRUE(notation.encode(*secret)->holdsSecret());
    EXPECT_TRUE(notation.decode(notation.encode(*secret))->holdsSecret());
    EXPECT_FALSE(notation.decode(notation.encode(*dataOf("plain")))->holdsSecret());
  }
}

INSTANTIATE_TEST_SUITE_P(EverySet, VXBaseConversionTests, ::testing::ValuesIn(VXCodecKernelsAvailable()),
                         [](const auto& param) { return param.param; });

}  // namespace
