#include <random>

#include "tests/support/Bytes.h"
#include "tests/support/RecordedAssertions.h"

using VXAdditions::vxfoundation_arrayByRemovingObjectsInArray;
using VXAdditions::vxfoundation_combinationsJoined;
using VXAdditions::vxfoundation_map;

namespace {

using Mapping = NSRef<NSObject>(const NSRef<NSObject>&, std::size_t, bool*);

std::string joined(const NSArray& list) { return *bytesOf(list.componentsJoinedByString("|")); }

const NSRef<NSArray> letters = NSArray::arrayWithObjects({"a", "b", "c"});

NSRef<NSObject> numbered(const NSRef<NSObject>& element, std::size_t index, bool*) {
  return NSString::stringWithFormat("%@%lu", element, index);
}

}  // namespace

TEST(VXAdditions, CombinationsCountLikeAnOdometer) {
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    const auto lists = NSMutableArray::array();
    std::size_t product = 1;
    for (std::size_t i = random() % 5; i > 0; --i) {
      const auto list = NSMutableArray::array();
      for (std::size_t n = random() % 5; n > 0; --n)
        list->addObject(text(std::vector{"", "a", "b", "\u00E9", "a"}[n]));
      lists->addObject(list);
      product *= list->count();
    }
    const auto results = vxfoundation_combinationsJoined(lists);
    ASSERT_EQ(results->count(), product);
    for (std::size_t k = 0, place = k; k < product; place = ++k) {
      std::string expected;
      for (const NSRef<NSObject> each : *lists) {
        const NSRefPtr<NSArray> list = NSDynamicCast<NSArray>(each);
        expected += *bytesOf(list->objectAtIndex(place % list->count())->description());
        place /= list->count();
      }
      ASSERT_EQ(bytesOf(NSDynamicCast<NSMutableString>(results->objectAtIndex(k))), expected);
    }
  }
}

TEST(VXAdditions, CombinationsRefuseWhatIsNoListOfTexts) {
  const auto number = NSNumber::numberWithInteger(1);
  const auto numbers = NSArray::arrayWithObject(number);
  const auto combine = [](std::initializer_list<NSObjectArg> lists) {
    return raised([&] { vxfoundation_combinationsJoined(NSArray::arrayWithObjects(lists)); });
  };
  EXPECT_EQ(combine({numbers}), "NSInvalidArgumentException");
  EXPECT_EQ(combine({number}), "NSInvalidArgumentException");
  EXPECT_EQ(combine({numbers, NSArray::array()}), "nothing") << "no combination, so nothing is appended";
  EXPECT_EQ(combine({NSArray::array(), number}), "nothing") << "nothing after an empty array is looked at";
  EXPECT_EQ(combine({number, NSArray::array()}), "NSInvalidArgumentException");
}

TEST(VXAdditions, MapEndsWithTheElementThatSetsTheStopFlag) {
  for (std::size_t last = 0; last < 5; ++last) {
    const auto mapped =
        vxfoundation_map(*letters, [&](const NSRef<NSObject>& element, auto index, bool* stop) {
          *stop = index == last;
          return numbered(element, index, stop);
        });
    EXPECT_EQ(joined(*mapped), std::string("a0|b1|c2").substr(0, 3 * std::min<std::size_t>(last, 2) + 2));
  }
}

TEST(VXAdditions, MapTakesAnythingCallable) {
  const auto map = [](auto&& each) { return joined(*vxfoundation_map(*letters, each)); };
  auto counting = [count = std::make_unique<int>(0)](const auto& element, auto...) {
    return NSString::stringWithFormat("%@%d", element, (*count)++);
  };
  const NSRefPtr<NSBlock<Mapping>> block(numbered);
  EXPECT_EQ(map(numbered), "a0|b1|c2");
  EXPECT_EQ(map(&numbered), "a0|b1|c2");
  EXPECT_EQ(map(counting), "a0|b1|c2");
  EXPECT_EQ(map(block), "a0|b1|c2");
  EXPECT_EQ(map([](const NSRef<NSObject>& element, auto...) { return element; }), "a|b|c");
}

TEST(VXAdditions, MapAssertsItsCallableAndWhatThatMakes) {
  const std::string site = "NSArray vxfoundation_map: NSArray+VXAdditions:";
  const auto check = [&](auto&& each, const char* failure, std::size_t fromEmpty) {
    const auto map = [&](const NSArray& list) { return raised([&] { vxfoundation_map(list, each); }); };
    EXPECT_EQ(map(*letters), "NSInternalInconsistencyException");
    RecordedAssertions assertions;
    EXPECT_EQ(map(*letters), "NSInvalidArgumentException") << "nil is called, or put into the list";
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
  const auto list = letters->mutableCopy();
  const auto grow = [&](const NSRef<NSObject>& element, auto...) { return list->addObject("d"), element; };
  EXPECT_EQ(raised([&] { vxfoundation_map(*list, grow); }), "NSGenericException");
}

TEST(VXAdditions, RemovalTakesAllThatEqualAndLeavesTheReceiver) {
  const auto list = NSArray::arrayWithObjects({"a", "b", "a", "c"});
  const auto without = [&](const NSRefPtr<NSArray>& objects) {
    return joined(*vxfoundation_arrayByRemovingObjectsInArray(*list, objects));
  };
  EXPECT_EQ(without(NSArray::arrayWithObjects({"a"})), "b|c");
  EXPECT_EQ(without(NSArray::arrayWithObjects({"c", "x", "b", "c"})), "a|a");
  EXPECT_EQ(without(list), "");
  EXPECT_EQ(without(NSArray::array()), "a|b|a|c");
  EXPECT_EQ(without(nullptr), "a|b|a|c");
}
