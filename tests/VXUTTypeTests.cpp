#include <Foundation/NSArray.h>
#include <Foundation/NSSet.h>
#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>
#include <VXFoundation/VXUTType.h>

#include <random>

#include "tests/host/CountedAllocations.h"
#include "tests/support/DynamicIdentifiers.h"
#include "tests/support/Fuzz.h"
#include "tests/support/Support.h"
#include "tests/support/Vectors.h"

namespace {

std::string decoded(std::string_view identifier) {
  return std::string(VXUTTypeDynamicIdentifier(*text(identifier)).text().value_or("nil"));
}

bool conforms(std::string_view type, std::string_view other) {
  return VXUTTypeConformsTo(text(type), text(other));
}

// A collection that counts how many of its objects were read.
struct Counting : NSFastEnumeration::Subclass<Counting> {
  std::size_t count() const override { return members.size(); }
  NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const override { return ++read, members[index]; }
  std::vector<NSRef<NSObject>> members;
  mutable std::size_t read = 0;
};

}  // namespace

TEST(VXUTType, DynamicIdentifiersDecodeAsTheTablesSay) {
  for (const auto& row : byteVectors("dynamic-identifiers.tsv")) {
    EXPECT_EQ(decoded(row.at(0)), row.at(1)) << row[0];
    EXPECT_EQ(shownPairs(*text(row[0])), row[1] == "nil" ? "nil" : row.at(2)) << row[0];
  }
  for (const auto& row : vectors("dynamic-texts.tsv"))
    EXPECT_EQ(shownPairs(*text(packed(row.at(0)))), row.at(1)) << row[0];
  EXPECT_EQ(decoded("dyn."), "");
}

// The fuzz target checks what must hold for any bodies and pairs.
TEST(VXUTType, PromisesHoldForBodiesOfEveryLengthAndPadding) {
  std::mt19937 random(41);
  for (std::size_t length = 0; length <= 24; ++length)
    for (std::size_t padding = 0; padding <= length; ++padding)
      for (int round = 0; round < 60; ++round) {
        std::string body(length, '=');
        // Half of the rounds use the first characters only, which makes ASCII likely.
        for (std::size_t i = 0; i < length - padding; ++i)
          body[i] = dynamicAlphabet[random() % (round % 2 ? 32 : 4)];
        if (round % 10 == 9 && length > 0) body[random() % length] = "iIjlo.=Z\x7F"[random() % 9];
        EXPECT_NO_THROW(fuzzWith(body)) << body;
      }
}

TEST(VXUTType, PromisesHoldForRandomPairs) {
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

TEST(VXUTType, ConformanceMatchesTheTables) {
  // "dyn.a" alone would not be a dynamic identifier, but an invalid body also packs the empty string.
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

TEST(VXUTType, CollectionsAreQueriedUpToTheFirstMatch) {
  const auto collection = Counting::alloc();
  collection->members = {text("public.audio"), text("public.image"), number(1)};
  EXPECT_TRUE(VXUTTypeConformsToAnyInCollection("public.png", collection));
  EXPECT_EQ(collection->read, 2U);
  EXPECT_EQ(raised([&] { VXUTTypeConformsToAnyInCollection("public.text", collection); }),
            "NSInvalidArgumentException");
  EXPECT_FALSE(VXUTTypeConformsToAnyInCollection("public.text", nullptr));
  EXPECT_FALSE(VXUTTypeConformsToAnyInCollection("public.text", NSSet::set()));
  EXPECT_TRUE(VXUTTypeConformsToAnyInCollection("public.text", NSSet::setWithObjects({"public.item", "x"})));
  EXPECT_FALSE(VXUTTypeConformsToAnyInCollection(nullptr, NSArray::arrayWithObject("public.item")));
  const auto dynamic = NSArray::arrayWithObject(text(packed("?b=2")));
  EXPECT_TRUE(VXUTTypeConformsToAnyInCollection(text(packed("a=1")), dynamic));
}

TEST(VXUTType, TypesAreComparedWithoutAllocation) {
  const std::string pairs = "a=1:" + std::string(300, 'x') + "=2:c=3:d=4";
  const std::string longPairs = pairs + ":e=" + std::string(1000, 'y');
  const auto allocations = [](const std::string& type, const std::string& other, bool expected) {
    const NSRef<NSString> first = text(type), second = text(other);
    bool result = VXUTTypeConformsTo(first, second);
    EXPECT_EQ(result, expected) << type << " to " << other;
    return allocationsOf([&] { result = VXUTTypeConformsTo(first, second); });
  };
  EXPECT_EQ(allocations("public.python-script", "public.item", true), 0U);
  EXPECT_EQ(allocations("public.python-script", "public.image", false), 0U);
  EXPECT_EQ(allocations(packed(pairs), packed("d=4:a=1"), true), 0U);
  EXPECT_EQ(allocations(packed(pairs), packed("d=4:a=2"), false), 0U);
  EXPECT_GT(allocations(packed(longPairs), packed("d=4:a=1"), true), 0U) << "allocations are counted";
}
