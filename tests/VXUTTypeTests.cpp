#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>

#include <algorithm>
#include <map>
#include <random>

#include "host/CountedAllocations.h"
#include "tests/support/DynamicIdentifiers.h"
#include "tests/support/Fuzz.h"
#include "tests/support/Support.h"

namespace {

// The text of a body by the rules, or "absent".
std::string textByDefinition(std::string body) {
  while (body.size() % 8 != 0) body.push_back('=');
  const std::size_t end = body.find_last_not_of('=') + 1, p = body.size() - end;
  const Bytes bytes = bytesByRule(body.substr(0, end), dynamicAlphabet, 5);
  if (p >= 7 || p == 2 || p == 5 || !bytes) return "";
  const bool isASCII = std::all_of(bytes->begin(), bytes->end(), [](char c) { return (c & 0x80) == 0; });
  return isASCII ? *bytes : "absent";
}

std::string decoded(std::string_view identifier) {
  const NSRefPtr<NSString> result = VXUTTypeDecodeDynamicIdentifier(*text(identifier));
  return bytesOf(result).value_or("absent");
}

std::string shownMap(std::string_view identifier) {
  const NSRefPtr<NSDictionary> map = VXUTTypeDynamicIdentifierMap(*text(identifier));
  return map ? *bytesOf(map->description()) : "absent";
}

bool conforms(std::string_view type, std::string_view other) {
  return VXUTTypeConformsTo(text(type), text(other));
}

// A collection of texts that counts how many were asked for.
struct Asked : NSFastEnumeration::Subclass<Asked> {
  std::size_t count() const override { return members.size(); }
  NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const override {
    return ++asked, members[index];
  }
  std::vector<NSRef<NSObject>> members;
  mutable std::size_t asked = 0;
};

}  // namespace

TEST(VXUTType, DynamicIdentifiersDecodeAsTold) {
  for (const auto& row : byteVectors("dynamic-identifiers.tsv")) {
    EXPECT_EQ(decoded(row.at(0)), row.at(1)) << row[0];
    EXPECT_EQ(shownMap(row[0]), row[1] == "absent" ? "absent" : row.at(2)) << row[0];
  }
  for (const auto& row : vectors("dynamic-texts.tsv"))
    EXPECT_EQ(shownMap(packed(row.at(0))), row.at(1)) << row[0];
  EXPECT_EQ(raised([] { decoded("dyn."); }), "NSRangeException");
}

TEST(VXUTType, BodiesOfEveryLengthAndPaddingDecodeAsDefined) {
  std::mt19937 random(41);
  std::map<bool, int> absent;
  for (std::size_t length = 0; length <= 24; ++length)
    for (std::size_t padding = 0; padding <= length; ++padding)
      for (int round = 0; round < 60; ++round) {
        std::string body(length, '=');
        // Half of the rounds keep to the first characters, which make ASCII likely.
        for (std::size_t i = 0; i < length - padding; ++i)
          body[i] = dynamicAlphabet[random() % (round % 2 ? 32 : 4)];
        if (round % 10 == 9 && length > 0) body[random() % length] = "iIjlo.=Z\x7F"[random() % 9];
        const std::string expected = textByDefinition(body);
        ASSERT_EQ(decoded("dyn.a" + body), expected) << body;
        if (!expected.empty()) ++absent[expected == "absent"];
      }
  EXPECT_GT(std::min(absent[true], absent[false]), 500);
}

// The promises of the fuzz target: pairs come back, and those of two types are compared as sets.
TEST(VXUTType, RandomPairsKeepThePromises) {
  const std::vector<std::string> pieces = {"a=1", "a=2",     "b=", "?a=1", "?b=2",
                                           " =1", "\x7F=12", "a",  "a=1=2"};
  std::mt19937 random(42);
  for (int round = 0; round < 20000; ++round) {
    std::string input;
    for (std::size_t i = random() % 10; i > 0; --i)
      input += pieces[random() % pieces.size()] + ":\n"[random() % 4 == 0];
    EXPECT_NO_THROW(fuzzWith(input)) << input;
  }
}

TEST(VXUTType, ConformanceIsAsTold) {
  // "dyn.a" alone would be no dynamic identifier: an invalid body packs the empty text, too.
  for (const auto& row : vectors("dynamic-conformance.tsv")) {
    const std::string type = row.at(0).empty() ? "dyn.ab" : packed(row[0]);
    const std::string other = row.at(1).empty() ? "dyn.aaaa" : packed(row[1]);
    EXPECT_EQ(conforms(type, other) ? "yes" : "no", row.at(2)) << row[0] << " to " << row[1];
  }
  for (const auto& row : vectors("declared-facts.tsv"))
    EXPECT_EQ(conforms(row.at(0), row.at(1)) ? "yes" : "no", row.at(2)) << row[0] << " to " << row[1];
  for (const NSStringArg other :
       {NSStringArg("public.item"), NSStringArg("dyn.aqe8xc"), NSStringArg(nullptr)})
    EXPECT_FALSE(VXUTTypeConformsTo(nullptr, other) || VXUTTypeConformsTo(other, nullptr));
}

TEST(VXUTType, ACollectionIsAskedUpToTheFirstYes) {
  const auto collection = Asked::alloc();
  collection->members = {text("public.audio"), text("public.image"), NSNumber::numberWithInteger(1)};
  EXPECT_TRUE(VXUTTypeConformsToAnyInCollection("public.png", collection));
  EXPECT_EQ(collection->asked, 2U);
  EXPECT_EQ(raised([&] { VXUTTypeConformsToAnyInCollection("public.text", collection); }),
            "NSInvalidArgumentException");
  EXPECT_FALSE(VXUTTypeConformsToAnyInCollection("public.text", nullptr));
  EXPECT_FALSE(VXUTTypeConformsToAnyInCollection("public.text", NSSet::set()));
  EXPECT_TRUE(VXUTTypeConformsToAnyInCollection("public.text", NSSet::setWithObjects({"public.item", "x"})));
  EXPECT_FALSE(VXUTTypeConformsToAnyInCollection(nullptr, NSArray::arrayWithObject("public.item")));
  const auto dynamic = NSArray::arrayWithObject(text(packed("?b=2")));
  EXPECT_TRUE(VXUTTypeConformsToAnyInCollection(text(packed("a=1")), dynamic));
}

TEST(VXUTType, DeclaredTypesAreComparedWithoutAllocation) {
  const NSRef<NSString> script = text("public.python-script"), item = text("public.item"),
                        image = text("public.image");
  EXPECT_TRUE(VXUTTypeConformsTo(script, item));
  bool yes = false, no = true;
  EXPECT_EQ(allocationsOf([&] {
              yes = VXUTTypeConformsTo(script, item);
              no = VXUTTypeConformsTo(script, image);
            }),
            0U);
  EXPECT_TRUE(yes && !no);
  EXPECT_GT(allocationsOf([] { text("x"); }), 0U) << "the count counts";
}
