#include <Foundation/NSArray.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSMutableString.h>
#include <VXFoundation/NSData+VXBaseConversion.h>
#include <VXFoundation/VXKeychainItem.h>

#include <random>
#include <set>
#include <sstream>
#include <unordered_map>

#include "tests/support/Bytes.h"
#include "tests/support/Fuzz.h"
#include "tests/support/Support.h"
#include "tests/support/Vectors.h"

using namespace std::string_literals;

namespace {

// Expects what the fuzz target promises for any bytes: conversions as in the C library, in both directions.
void expectPromises(const std::string& bytes) {
  EXPECT_NO_THROW(fuzzWith(bytes)) << testing::PrintToString(bytes);
}

const std::u16string loneSurrogate = u"a\xD800";

}  // namespace

TEST(NSString, PromisesHoldForEveryTwoBytes) {
  for (int first = 0; first < 256; ++first)
    for (int second = 0; second < 256; ++second)
      expectPromises({static_cast<char>(first), static_cast<char>(second)});
}

TEST(NSString, PromisesHoldForRandomBytes) {
  std::mt19937 random(20);
  // Bytes at the limits of well-formed UTF-8, so that long sequences occur, complete and broken.
  const std::string edges = "\x00\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xED\xEF\xF0\xF2\xF4\xF5"s;
  for (int round = 0; round < 200'000; ++round) {
    std::string bytes(3 + random() % 4, '\0');
    for (char& byte : bytes) byte = edges[random() % edges.size()];
    expectPromises(bytes);
  }
}

TEST(NSString, StorageIsNarrowOnlyForASCIIAndIsNotObservable) {
  for (const auto& row : byteVectors("strings.tsv")) {
    const auto fixed = text(row[0]);
    const auto grown = NSMutableString::string();
    for (std::size_t i = 0; i < fixed->length(); ++i)
      grown->appendCharacters(std::u16string(1, fixed->characterAtIndex(i)));
    const NSRef<NSString> read = NSString::stringWithData(dataOf(row[0]), NSUTF8StringEncoding);
    for (const NSRef<NSString>& each : {fixed, NSRef<NSString>(grown), grown->copy(), read}) {
      EXPECT_EQ(bytesOf(each->dataUsingEncoding(NSUTF8StringEncoding)), row[0]);
      EXPECT_EQ(each->length(), std::stoul(row[1])) << row[0];
      EXPECT_EQ(each->isASCII(), row[2] == "narrow") << row[0];
      EXPECT_TRUE(each->isEqual(fixed) && fixed->isEqual(each)) << row[0];
      EXPECT_EQ(each->hash(), fixed->hash()) << row[0];
      EXPECT_EQ(raised([&] { each->characterAtIndex(each->length()); }), "NSRangeException");
      EXPECT_EQ(raised([&] { each->substringFromIndex(each->length() + 1); }), "NSRangeException");
      EXPECT_EQ(each->substringFromIndex(each->length())->length(), 0U);
    }
  }
  EXPECT_FALSE(text("1")->isEqual(text("2")) || text("1")->isEqual(number(1)));
  EXPECT_TRUE(text("\xC3\xA9xyz")->substringFromIndex(1)->isASCII());
  EXPECT_TRUE(text("x\xC3\xA9,y")->componentsSeparatedByString(",")->lastObject()->isEqual(text("y")));
}

TEST(NSString, PartsAreThoseBetweenTheMarksWhereverTheyAre) {
  std::mt19937 random(24);
  for (int round = 0; round < 20'000; ++round) {
    std::u16string units(random() % 80, u'\xE9'), mark(1 + random() % 3, u'\xE9');
    for (char16_t& unit : units) unit = u"\xE9\xE9\xE9,\x65E5"[random() % 5];
    for (char16_t& unit : mark) unit = u"\xE9,"[random() % 2];
    std::u16string rest = units;
    const auto parts = NSString::stringWithCharacters(units)->componentsSeparatedByString(
        NSString::stringWithCharacters(mark));
    for (std::size_t i = 0; i < parts->count(); ++i) {
      const std::size_t end = rest.find(mark);
      ASSERT_TRUE(parts->objectAtIndex(i)->isEqual(NSString::stringWithCharacters(rest.substr(0, end))));
      ASSERT_EQ(end == rest.npos, i + 1 == parts->count());
      if (end != rest.npos) rest.erase(0, end + mark.size());
    }
  }
}

TEST(NSString, WhatCannotBeEncodedIsNilAndNothingIsRepaired) {
  const auto lone = NSString::stringWithCharacters(loneSurrogate);
  EXPECT_FALSE(lone->dataUsingEncoding(NSUTF8StringEncoding));
  EXPECT_EQ(raised([&] { static_cast<void>(static_cast<std::string>(*lone)); }),
            "NSInvalidArgumentException");
  EXPECT_FALSE(text("\xC3\xA9")->dataUsingEncoding(NSASCIIStringEncoding));
  EXPECT_FALSE(NSString::stringWithData(dataOf("\xC3\xA9"), NSASCIIStringEncoding));
  EXPECT_FALSE(NSString::stringWithUTF8String(static_cast<const char*>(nullptr)));
  EXPECT_EQ(bytesOf(NSString::stringWithData(nullptr, NSUTF8StringEncoding)), "");
}

TEST(NSString, FormatsAreFilledInOrRejected) {
  const NSRefPtr<NSString> nil;
  const auto filled = NSString::stringWithFormat("%@-%d-%lu-%%-%@", text("\xC3\xA9"), -2147483648,
                                                 18446744073709551615U, nil);
  EXPECT_EQ(filled->UTF8String(), "\xC3\xA9--2147483648-18446744073709551615-%-(null)");
  EXPECT_TRUE(text("a")->stringByAppendingFormat(".%@", text("b"))->isEqual(text("a.b")));
  const std::string invalid = "NSInvalidArgumentException";
  EXPECT_EQ(raised([] { NSString::stringWithFormat("%@"); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("%d%d", 7); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("x", 1); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("%d", text("1")); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("%lu", 1); }), invalid);
  EXPECT_EQ(raised([] { NSString::stringWithFormat("100%"); }), invalid);
  EXPECT_EQ(raised([&] { NSString::stringWithFormat(nil, text("1")); }), invalid);
  EXPECT_EQ(raised([&] { NSMutableString::string()->appendFormat(nil); }), invalid);
  EXPECT_EQ(raised([&] { NSException::raise(NSRangeException, nil); }), invalid);
}

TEST(NSString, AppendsItself) {
  for (const char* start : {"ab", "\xC3\xA9t\xC3\xA9"}) {
    const auto doubled = NSMutableString::stringWithString(text(start));
    for (int i = 0; i < 4; ++i) doubled->appendString(doubled);
    std::string expected;
    for (int i = 0; i < 16; ++i) expected += start;
    EXPECT_EQ(doubled->UTF8String(), expected);
  }
}

TEST(NSString, StreamsAndLogsAsOneLine) {
  std::ostringstream stream;
  stream << text("k\xC3\xA9y") << NSRefPtr<NSString>() << *NSString::stringWithCharacters(loneSurrogate);
  EXPECT_EQ(stream.str(), "k\xC3\xA9y(null)\\u61\\ud800");
  std::vector<std::string> lines;
  const NSLogSink before = NSLogSetSink([&](std::string_view line) { lines.emplace_back(line); });
  NSLog("two\nlines\r%d", -1);
  NSLogSetSink(before);
  EXPECT_EQ(lines, std::vector<std::string>{"two\\nlines\\r-1"});
}

TEST(NSString, TheMarkOfASecretIsPassedOn) {
  const auto secret = NSData::dataWithBytes(std::as_bytes(std::span("p\xC3\xA4ss", 5)), true);
  const NSRefPtr<NSString> password = NSString::stringWithData(secret, NSUTF8StringEncoding);
  EXPECT_TRUE(password->holdsSecret());
  EXPECT_TRUE(password->mutableCopy()->copy()->holdsSecret());
  EXPECT_TRUE(password->dataUsingEncoding(NSUTF8StringEncoding)->holdsSecret());
  EXPECT_TRUE(secret->mutableCopy()->copy()->holdsSecret());
  EXPECT_TRUE(password->substringFromIndex(2)->holdsSecret());
  for (const char* separator : {"s", "\xC3\xA4", "none"}) {
    const NSRef<NSArray> parts = password->componentsSeparatedByString(text(separator));
    for (const NSRef<NSObject> part : *parts)
      EXPECT_TRUE(NSRef(NSDynamicCast<NSString>(part))->holdsSecret());
  }
  const auto joined = NSMutableData::dataWithLength(3);
  joined->appendData(secret);
  EXPECT_TRUE(joined->holdsSecret());
  EXPECT_FALSE(text("plain")->dataUsingEncoding(NSUTF8StringEncoding)->holdsSecret());
}

TEST(NSString, RunTimeStringsAreCheckedWhereTheyAreUsed) {
  const std::string name = "J\xC3\xBCrgen", bad = "\xC3(";
  char array[] = "array";
  const char* none = nullptr;
  EXPECT_EQ(bytesOf(text("a")->stringByAppendingString(name)), "aJ\xC3\xBCrgen");
  EXPECT_TRUE(text("J\xC3\xBCrgen")->isEqualToString(std::string_view(name)));
  EXPECT_EQ(NSArray::arrayWithObjects({name, name.c_str(), array, std::string_view()})->count(), 4U);
  EXPECT_EQ(bytesOf(NSString::stringWithFormat(std::string("%@ %@ %@"), name, none, array)),
            "J\xC3\xBCrgen (null) array");
  EXPECT_FALSE(VXBaseConversion::dataWithBase64String(none));
  const auto reason = [](auto&& action) { return bytesOf(exceptionOf(action)->reason()); };
  EXPECT_EQ(reason([&] { NSString::stringWithString(bad); }),
            "stringWithString: a string is malformed UTF-8");
  EXPECT_EQ(reason([&] { text("a")->hasPrefix(bad); }), "hasPrefix: a string is malformed UTF-8");
  EXPECT_EQ(reason([&] { NSMutableArray::array()->addObject(bad); }),
            "insertObject: a string is malformed UTF-8");
  EXPECT_EQ(reason([&] { VXGenericKeychainItem::alloc()->setPassword(bad); }),
            "setPassword: a string is malformed UTF-8");
  EXPECT_EQ(reason([&] { VXGenericKeychainItem::alloc()->setLabel(bad.c_str()); }),
            "setLabel: a string is malformed UTF-8");
}

TEST(NSString, StringsCompareByValueAndHandlesByIdentity) {
  const NSRef<NSString> a = text("a"), same = text("a"), wide = text("\xC3\xA4"),
                        far = text("\xF0\x9F\x94\x91");
  EXPECT_TRUE(*a == *same && a != same && *a != *wide && a == a);
  EXPECT_TRUE((*a < *wide) && (*wide > *a) && (*NSString::string() < *a) && (*text("ab") > *a));
  EXPECT_TRUE(*text("\xEF\xBF\xBD") > *far) << "by code units, not by code points";
  EXPECT_EQ(std::hash<NSString>()(*a), std::hash<NSString>()(*a->mutableCopy()));
  std::unordered_map<NSRef<NSString>, int, NSValueHash, NSValueEqual> counts;
  ++counts[a], ++counts[same], ++counts[wide];
  EXPECT_EQ(counts.at(text("a")), 2);
  const std::set<NSRef<NSString>, NSStringLess> ordered{wide, same, a};
  EXPECT_EQ(ordered.size(), 2U);
  EXPECT_EQ(*ordered.begin(), same);
}
