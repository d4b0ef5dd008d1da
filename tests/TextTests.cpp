#include <iconv.h>

#include <random>
#include <sstream>

#include "Support.h"

using namespace std::string_literals;

namespace {

// What the C library's own decoder makes of UTF-8: an implementation that shares nothing with ours.
class IndependentDecoder {
 public:
  ~IndependentDecoder() { iconv_close(converter_); }

  std::optional<std::u16string> decode(std::string bytes) const {
    std::u16string units(bytes.size() + 1, u'\0');
    char* in = bytes.data();
    char* out = reinterpret_cast<char*>(units.data());
    std::size_t left = bytes.size();
    std::size_t room = units.size() * sizeof(char16_t);
    iconv(converter_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter_, &in, &left, &out, &room) == static_cast<std::size_t>(-1)) return std::nullopt;
    units.resize(units.size() - room / sizeof(char16_t));
    return units;
  }

 private:
  iconv_t converter_ = iconv_open("UTF-16LE", "UTF-8");
};

void expectAsDecodedElsewhere(const IndependentDecoder& decoder, const std::string& bytes) {
  const auto expected = decoder.decode(bytes);
  const RefPtr<NSString> decoded = NSString::stringWithUTF8String(std::string_view(bytes));
  ASSERT_EQ(bool(decoded), expected.has_value()) << testing::PrintToString(bytes);
  if (!decoded) return;
  ASSERT_EQ(static_cast<std::u16string>(*decoded), *expected) << testing::PrintToString(bytes);
  ASSERT_EQ(decoded->UTF8String(), bytes) << "back again";
}

const std::u16string loneHigh = u"a\xD800";
const std::u16string loneLow = u"\xDC00z";

}  // namespace

TEST(Text, EveryTwoBytesOfUTF8DecodeAsElsewhere) {
  const IndependentDecoder decoder;
  for (int first = 0; first < 256; ++first)
    for (int second = 0; second < 256; ++second)
      expectAsDecodedElsewhere(decoder, {static_cast<char>(first), static_cast<char>(second)});
}

TEST(Text, RandomUTF8DecodesAsElsewhere) {
  const IndependentDecoder decoder;
  std::mt19937 random(20);
  // Bytes at the edges of what is well formed, so that long sequences are met, whole and broken.
  const std::string edges = "\x00\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xED\xEF\xF0\xF4\xF5"s;
  for (int round = 0; round < 200'000; ++round) {
    std::string bytes(3 + random() % 4, '\0');
    for (char& byte : bytes) byte = edges[random() % edges.size()];
    expectAsDecodedElsewhere(decoder, bytes);
  }
  for (char32_t value = 0x10000; value < 0x110000; value += 0x3FF) {
    const std::u16string units{static_cast<char16_t>(0xD7C0 + (value >> 10)),
                               static_cast<char16_t>(0xDC00 + (value & 0x3FF))};
    expectAsDecodedElsewhere(decoder, *NSString::stringWithCharacters(units)->UTF8String());
  }
}

TEST(Text, StorageIsNarrowExactlyForASCII) {
  EXPECT_TRUE(NSString::string()->isASCII());
  EXPECT_TRUE(text("plain\x7F")->isASCII());
  EXPECT_TRUE(NSString::stringWithCharacters(u"plain")->isASCII());
  EXPECT_FALSE(text("\xC2\x80")->isASCII());
  const auto growing = NSMutableString::stringWithString("a");
  growing->appendString("b");
  EXPECT_TRUE(growing->isASCII());
  growing->appendString("\xC3\xA9");
  EXPECT_FALSE(growing->isASCII());
  EXPECT_TRUE(growing->isEqual(text("ab\xC3\xA9")));
  EXPECT_TRUE(text("\xC3\xA9xyz")->substringFromIndex(1)->isASCII());
  EXPECT_TRUE(text("x\xC3\xA9,y")->componentsSeparatedByString(",")->lastObject()->isEqual(text("y")));
}

TEST(Text, WidthNeverShows) {
  const auto fixed = text("caf\xC3\xA9 \xF0\x9F\x94\x91");  // a key, beyond the basic plane
  const auto grown = NSMutableString::string();
  for (std::size_t i = 0; i < fixed->length(); ++i)
    grown->appendCharacters(std::u16string(1, fixed->characterAtIndex(i)));
  EXPECT_EQ(fixed->length(), 7U);
  EXPECT_EQ(fixed->characterAtIndex(5), 0xD83D);
  EXPECT_TRUE(fixed->isEqual(grown) && grown->isEqual(fixed));
  EXPECT_EQ(fixed->hash(), grown->hash());
  EXPECT_EQ(text("abc")->hash(), NSMutableString::stringWithString("abc")->hash());
  EXPECT_FALSE(text("abc")->isEqual(fixed));
  EXPECT_FALSE(text("abc")->isEqual(NSNumber::numberWithInteger(1)));
  EXPECT_EQ(raised([&] { fixed->characterAtIndex(7); }), "NSRangeException");
  EXPECT_EQ(raised([&] { fixed->substringFromIndex(8); }), "NSRangeException");
}

TEST(Text, WhatCannotBeToldIsAbsentAndNothingIsRepaired) {
  for (const std::u16string& units : {loneHigh, loneLow}) {
    const auto lone = NSString::stringWithCharacters(units);
    EXPECT_EQ(static_cast<std::u16string>(*lone), units) << "kept as data";
    EXPECT_EQ(lone->UTF8String(), std::nullopt);
    EXPECT_FALSE(lone->dataUsingEncoding(NSUTF8StringEncoding));
    EXPECT_EQ(raised([&] { static_cast<void>(static_cast<std::string>(*lone)); }),
              "NSInvalidArgumentException");
  }
  EXPECT_FALSE(text("\xC3\xA9")->dataUsingEncoding(NSASCIIStringEncoding));
  EXPECT_EQ(text("\xC3\xA9")->dataUsingEncoding(NSUTF8StringEncoding)->length(), 2U);
  EXPECT_FALSE(NSString::stringWithUTF8String(static_cast<const char*>(nullptr)));
}

TEST(Text, NULAndByteOrderMarkAreContent) {
  const std::string bytes =
      "\xEF\xBB\xBF"
      "a\0b"s;
  const RefPtr<NSData> data = NSData::dataWithBytes(bytes.data(), bytes.size());
  const RefPtr<NSString> content = NSString::stringWithData(data, NSUTF8StringEncoding);
  EXPECT_EQ(content->length(), 4U);
  EXPECT_EQ(content->characterAtIndex(0), 0xFEFF);
  EXPECT_EQ(content->characterAtIndex(2), 0);
  EXPECT_TRUE(content->dataUsingEncoding(NSUTF8StringEncoding)->isEqual(data));
  EXPECT_FALSE(NSString::stringWithData(data, NSASCIIStringEncoding));
  EXPECT_TRUE(NSString::stringWithData(nullptr, NSUTF8StringEncoding)->isEqual(NSString::string()));
}

TEST(Text, FormatsFillInAndRefuse) {
  const RefPtr<NSString> nil;
  EXPECT_EQ(static_cast<std::string>(*NSString::stringWithFormat("%@-%d-%lu-%%-%@", text("\xC3\xA9"),
                                                                 -2147483648, 18446744073709551615U, nil)),
            "\xC3\xA9--2147483648-18446744073709551615-%-(null)");
  EXPECT_TRUE(text("a")->stringByAppendingFormat(".%@", text("b"))->isEqual(text("a.b")));
  const std::string invalid = "NSInvalidArgumentException";
  EXPECT_EQ(raised([] { NSString::stringWithFormat("%@"); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("x", 1); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("%d", text("1")); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("%lu", 1); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("100%"); }), invalid);
}

TEST(Text, SplitsAndJoinsBackToItself) {
  for (const char* joined : {"", ":", "a", "a:b", ":a::b:", "caf\xC3\xA9:x"}) {
    const auto pieces = text(joined)->componentsSeparatedByString(":");
    EXPECT_EQ(pieces->count(),
              1U + static_cast<std::size_t>(std::count(joined, joined + strlen(joined), ':')));
    EXPECT_TRUE(pieces->componentsJoinedByString(":")->isEqual(text(joined))) << joined;
  }
}

TEST(Text, AppendsItself) {
  for (const char* start : {"ab", "\xC3\xA9t\xC3\xA9"}) {
    const auto doubled = NSMutableString::stringWithString(text(start));
    for (int i = 0; i < 4; ++i) doubled->appendString(doubled);
    std::string expected;
    for (int i = 0; i < 16; ++i) expected += start;
    EXPECT_EQ(doubled->UTF8String(), expected);
  }
}

TEST(Text, StreamsAndLogsAsOneLine) {
  std::ostringstream stream;
  stream << text("k\xC3\xA9y") << RefPtr<NSString>() << *NSString::stringWithCharacters(loneHigh);
  EXPECT_EQ(stream.str(), "k\xC3\xA9y(null)\\u61\\ud800");
  std::vector<std::string> lines;
  const NSLogSink before = NSLogSetSink([&](std::string_view line) { lines.emplace_back(line); });
  NSLog("two\nlines %d", -1);
  NSLogSetSink(before);
  EXPECT_EQ(lines, std::vector<std::string>{"two\\nlines -1"});
}

TEST(Text, OfASecretPassesTheMarkOn) {
  const Ref<NSData> secret = NSData::dataWithBytes("p\xC3\xA4ss", 5);
  secret->setHoldsSecret(true);
  const RefPtr<NSString> password = NSString::stringWithData(secret, NSUTF8StringEncoding);
  EXPECT_TRUE(password->holdsSecret());
  EXPECT_TRUE(password->mutableCopy()->copy()->holdsSecret());
  EXPECT_TRUE(password->dataUsingEncoding(NSUTF8StringEncoding)->holdsSecret());
  EXPECT_TRUE(secret->mutableCopy()->copy()->holdsSecret());
  EXPECT_FALSE(text("plain")->dataUsingEncoding(NSUTF8StringEncoding)->holdsSecret());
}
