#include <Foundation/NSMutableString.h>
#include <VXFoundation/NSArray+VXAdditions.h>

#include "tests/support/Bytes.h"
#include "tests/support/RecordedAssertions.h"
#include "tests/support/Vectors.h"

using VXAdditions::vxfoundation_arrayByRemovingObjectsInArray;
using VXAdditions::vxfoundation_combinationsJoined;
using VXAdditions::vxfoundation_map;

namespace {

using Mapping = NSRef<NSObject>(const NSRef<NSObject>&, std::size_t, bool*);

std::string joined(const NSArray& array) { return *bytesOf(array.componentsJoinedByString("|")); }

NSRef<NSArray> split(const NSRef<NSObject>& cell) {
  const auto text = NSRef(NSDynamicCast<NSString>(cell));
  return text->isEqualToString("-") ? NSArray::array() : text->componentsSeparatedByString(",");
}

const NSRef<NSArray> letters = NSArray::arrayWithObjects({"a", "b", "c"});

NSRef<NSObject> numbered(const NSRef<NSObject>& element, std::size_t index, bool*) {
  return NSString::stringWithFormat("%@%lu", element, index);
}

}  // namespace

TEST(VXAdditions, CombinationsMatchTheTable) {
  for (const auto& row : byteVectors("combinations.tsv")) {
    const auto arrays = NSMutableArray::array();
    const NSRef<NSArray> cells = text(row[0])->componentsSeparatedByString("/");
    for (const NSRef<NSObject> cell : *cells) arrays->addObject(split(cell));
    const auto combinations = vxfoundation_combinationsJoined(arrays);
    EXPECT_TRUE(combinations->isEqual(split(text(row[1])))) << row[0] << *combinations->description();
    for (const NSRef<NSObject> each : *combinations) EXPECT_TRUE(NSDynamicCast<NSMutableString>(each));
  }
  EXPECT_TRUE(vxfoundation_combinationsJoined(NSArray::array())->isEqual(NSArray::arrayWithObject("")));
}

TEST(VXAdditions, CombinationsRejectAnythingButArraysOfStrings) {
  const auto one = number(1);
  const auto numbers = NSArray::arrayWithObject(one);
  const auto combine = [](std::initializer_list<NSObjectArg> arrays) {
    return raised([&] { vxfoundation_combinationsJoined(NSArray::arrayWithObjects(arrays)); });
  };
  EXPECT_EQ(combine({numbers}), "NSInvalidArgumentException");
  EXPECT_EQ(combine({one}), "NSInvalidArgumentException");
  EXPECT_EQ(combine({numbers, NSArray::array()}), "nothing") << "no combination, so nothing is appended";
  EXPECT_EQ(combine({NSArray::array(), one}), "nothing") << "nothing after an empty array is examined";
  EXPECT_EQ(combine({one, NSArray::array()}), "NSInvalidArgumentException");
}

TEST(VXAdditions, MapStopsAfterTheElementThatSetsTheFlag) {
  for (std::size_t last = 0; last < 5; ++last) {
    const auto mapped =
        vxfoundation_map(*letters, [&](const NSRef<NSObject>& element, auto index, bool* stop) {
          *stop = index == last;
          return numbered(element, index, stop);
        });
    EXPECT_EQ(joined(*mapped), std::string("a0|b1|c2").substr(0, 3 * std::min<std::size_t>(last, 2) + 2));
  }
}

TEST(VXAdditions, MapAcceptsAnyCallable) {
  const auto map = [](auto&& each) { return joined(*vxfoundation_map(*letters, each)); };
  auto counting = [count = std::make_unique<int>(0)](const auto& element, auto...) {
    return NSString::stringWithFormat("%@%d", element, (*count)++);
  };
  const NSRefPtr<NSBlock<Mapping>> block(numbered);
  EXPECT_EQ(block->copy(), block);
  EXPECT_EQ(map(numbered), "a0|b1|c2");
  EXPECT_EQ(map(&numbered), "a0|b1|c2");
  EXPECT_EQ(map(counting), "a0|b1|c2");
  EXPECT_EQ(map(block), "a0|b1|c2");
  EXPECT_EQ(map([](const NSRef<NSObject>& element, auto...) { return element; }), "a|b|c");
}

TEST(VXAdditions, MapAssertsItsCallableAndItsResults) {
  const std::string site = "NSArray vxfoundation_map: NSArray+VXAdditions:";
  const auto check = [&](auto&& each, const char* failure, std::size_t fromEmpty) {
    const auto map = [&](const NSArray& array) { return raised([&] { vxfoundation_map(array, each); }); };
    EXPECT_EQ(map(*letters), "NSInternalInconsistencyException");
    RecordedAssertions assertions;
    EXPECT_EQ(map(*letters), "NSInvalidArgumentException") << "nil is called, or put into the array";
    EXPECT_EQ(assertions.take(), std::vector{site + failure});
    EXPECT_EQ(map(*NSArray::array()), "nothing");
    EXPECT_EQ(assertions.take().size(), fromEmpty);
  };
  const char* noCallable = "82 Invalid parameter not satisfying: each != nil";
  check(nullptr, noCallable, 1);
  check(static_cast<Mapping*>(nullptr), noCallable, 1);
  check(std::function<Mapping>(), noCallable, 1);
  check(NSRefPtr<NSBlock<Mapping>>(), noCallable, 1);
  check([](auto...) { return NSRefPtr<NSString>(); },
        "88 Invalid parameter not satisfying: mappedObject != nil", 0);
}

TEST(VXAdditions, MapRaisesWhenTheReceiverChanges) {
  const auto array = letters->mutableCopy();
  const auto grow = [&](const NSRef<NSObject>& element, auto...) { return array->addObject("d"), element; };
  EXPECT_EQ(raised([&] { vxfoundation_map(*array, grow); }), "NSGenericException");
}

TEST(VXAdditions, RemovalOmitsEqualElementsAndLeavesTheReceiverAlone) {
  const auto array = NSArray::arrayWithObjects({"a", "b", "a", "c"});
  const auto without = [&](const NSRefPtr<NSArray>& objects) {
    return joined(*vxfoundation_arrayByRemovingObjectsInArray(*array, objects));
  };
  EXPECT_EQ(without(NSArray::arrayWithObjects({"a"})), "b|c");
  EXPECT_EQ(without(NSArray::arrayWithObjects({"c", "x", "b", "c"})), "a|a");
  EXPECT_EQ(without(array), "");
  EXPECT_EQ(without(NSArray::array()), "a|b|a|c");
  EXPECT_EQ(without(nullptr), "a|b|a|c");
}
