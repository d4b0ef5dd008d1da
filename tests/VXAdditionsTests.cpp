#include <Foundation/NSFunctionRef.h>

#include <random>

#include "RecordedAssertions.h"

using VXAdditions::vxfoundation_arrayByRemovingObjectsInArray;
using VXAdditions::vxfoundation_combinationsJoined;
using VXAdditions::vxfoundation_map;

namespace {

std::string joined(const NSArray& list) {
  return static_cast<std::string>(*list.componentsJoinedByString("|"));
}

Ref<NSArray> letters() { return NSArray::arrayWithObjects({"a", "b", "c"}); }

Ref<NSObject> numbered(const Ref<NSObject>& element, std::size_t index, bool*) {
  return NSString::stringWithFormat("%@%lu", element, index);
}

// Equal by value, and counts how often it is asked.
struct Counted : NSObject::Subclass<Counted> {
  using HashAgreesWithEquality = Counted;
  explicit Counted(std::size_t number) : value(number) {}
  bool isEqual(const RefPtr<NSObject>& other) const override {
    ++asked;
    const auto* counted = dynamicCast<Counted>(other.get());
    return counted && counted->value == value;
  }
  std::size_t hash() const override { return value; }
  std::size_t value;
  static inline std::size_t asked = 0;
};

}  // namespace

TEST(VXAdditions, CombinationsCountLikeAnOdometer) {
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    const auto lists = NSMutableArray::array();
    std::vector<std::size_t> counts(random() % 5);
    std::size_t product = 1;
    for (std::size_t& count : counts) {
      product *= count = random() % 5;
      const auto list = NSMutableArray::array();
      for (std::size_t i = 0; i < count; ++i)
        list->addObject(text(std::vector{"", "a", "b", "\u00E9", "a"}[i]));
      lists->addObject(list);
    }
    const auto results = vxfoundation_combinationsJoined(lists);
    ASSERT_EQ(results->count(), product);
    for (std::size_t k = 0; k < product; ++k) {
      const auto expected = NSMutableString::string();
      std::size_t place = k;
      for (std::size_t i = 0; i < counts.size(); place /= counts[i++])
        expected->appendString(dynamicCast<NSString>(
            dynamicCast<NSArray>(lists->objectAtIndex(i))->objectAtIndex(place % counts[i])));
      ASSERT_TRUE(results->objectAtIndex(k)->isEqual(expected));
    }
  }
}

TEST(VXAdditions, CombinationsAreNewGrowableTexts) {
  const auto input = NSMutableString::stringWithString("a");
  const auto results =
      vxfoundation_combinationsJoined(NSArray::arrayWithObject(NSArray::arrayWithObject(input)));
  const auto result = dynamicCast<NSMutableString>(results->firstObject());
  ASSERT_TRUE(result);
  result->appendString("b");
  EXPECT_EQ(static_cast<std::string>(*input), "a");
}

TEST(VXAdditions, CombinationsRefuseWhatIsNoListOfTexts) {
  const auto number = NSNumber::numberWithInteger(1);
  const auto empty = NSArray::array();
  const auto numbers = NSArray::arrayWithObject(number);
  const auto combine = [](std::initializer_list<Object> lists) {
    const auto outer = NSArray::arrayWithObjects(lists);
    return raised([&] { vxfoundation_combinationsJoined(outer); });
  };
  EXPECT_EQ(combine({numbers}), "NSInvalidArgumentException");
  EXPECT_EQ(combine({number}), "NSInvalidArgumentException");
  EXPECT_EQ(combine({numbers, empty}), "nothing") << "no combination, so nothing is appended";
}

TEST(VXAdditions, MapEndsWithTheElementThatSetsTheStopFlag) {
  for (std::size_t last = 0; last < 5; ++last) {
    std::size_t calls = 0;
    const auto mapped =
        vxfoundation_map(*letters(), [&](const Ref<NSObject>& element, std::size_t index, bool* stop) {
          EXPECT_FALSE(*stop);
          ++calls;
          *stop = index == last;
          return numbered(element, index, stop);
        });
    EXPECT_EQ(joined(*mapped), std::string("a0|b1|c2").substr(0, 3 * std::min<std::size_t>(last, 2) + 2));
    EXPECT_EQ(calls, mapped->count());
  }
}

TEST(VXAdditions, MapTakesAnythingCallable) {
  const auto map = [](auto&& each) { return joined(*vxfoundation_map(*letters(), each)); };
  auto moved = [owned = std::make_unique<int>(0)](const Ref<NSObject>& element, std::size_t,
                                                        bool*) mutable {
    return NSString::stringWithFormat("%@%d", element, (*owned)++);
  };
  const RefPtr<NSBlock<RefPtr<NSObject>(const Ref<NSObject>&, std::size_t, bool*)>> block(numbered);
  EXPECT_EQ(map(numbered), "a0|b1|c2");
  EXPECT_EQ(map(&numbered), "a0|b1|c2");
  EXPECT_EQ(map(moved), "a0|b1|c2");
  EXPECT_EQ(map(block), "a0|b1|c2");
  EXPECT_EQ(map(std::function(numbered)), "a0|b1|c2");
  EXPECT_EQ(map([](const Ref<NSObject>& element, auto...) { return element; }), "a|b|c");
}

TEST(VXAdditions, MapAssertsItsCallable) {
  using Function = Ref<NSObject>(const Ref<NSObject>&, std::size_t, bool*);
  const auto check = [](auto&& nil) {
    EXPECT_EQ(raised([&] { vxfoundation_map(*NSArray::array(), nil); }), "NSInternalInconsistencyException");
    RecordedAssertions assertions;
    EXPECT_EQ(vxfoundation_map(*NSArray::array(), nil)->count(), 0U) << "goes on as if it were there";
    EXPECT_EQ(assertions.take(), std::vector<std::string>{"NSArray vxfoundation_map: NSArray+VXAdditions:82 "
                                                          "Invalid parameter not satisfying: each != nil"});
    EXPECT_EQ(raised([&] { vxfoundation_map(*letters(), nil); }), "NSInvalidArgumentException");
  };
  check(nullptr);
  check(static_cast<Function*>(nullptr));
  check(std::function<Function>());
  check(RefPtr<NSBlock<Function>>());
}

TEST(VXAdditions, MapAssertsWhatTheCallableMakes) {
  std::size_t calls = 0;
  const auto vanish = [&calls](auto...) { return ++calls, RefPtr<NSString>(); };
  EXPECT_EQ(raised([&] { vxfoundation_map(*letters(), vanish); }), "NSInternalInconsistencyException");
  RecordedAssertions assertions;
  EXPECT_EQ(raised([&] { vxfoundation_map(*letters(), vanish); }), "NSInvalidArgumentException");
  EXPECT_EQ(assertions.take(),
            std::vector<std::string>{"NSArray vxfoundation_map: NSArray+VXAdditions:88 "
                                     "Invalid parameter not satisfying: mappedObject != nil"});
  EXPECT_EQ(calls, 2U);
}

TEST(VXAdditions, MapRaisesWhenTheReceiverChanges) {
  const auto list = letters()->mutableCopy();
  EXPECT_EQ(raised([&] {
              vxfoundation_map(*list, [&](const Ref<NSObject>& element, auto...) {
                list->addObject("d");
                return element;
              });
            }),
            "NSGenericException");
}

TEST(VXAdditions, RemovalTakesAllThatEqualAndLeavesTheReceiver) {
  const auto list = NSArray::arrayWithObjects({"a", "b", "a", "c"});
  const auto without = [&](std::initializer_list<Object> objects) {
    return joined(*vxfoundation_arrayByRemovingObjectsInArray(*list, NSArray::arrayWithObjects(objects)));
  };
  EXPECT_EQ(without({"a"}), "b|c");
  EXPECT_EQ(without({"c", "x", "b", "c"}), "a|a");
  EXPECT_EQ(without({}), "a|b|a|c");
  EXPECT_EQ(vxfoundation_arrayByRemovingObjectsInArray(*list, list)->count(), 0U);
  EXPECT_EQ(vxfoundation_arrayByRemovingObjectsInArray(*list, nullptr)->count(), 4U);
  EXPECT_EQ(joined(*list), "a|b|a|c");
}

TEST(VXAdditions, RemovalAsksEachElementAboutOnce) {
  const auto list = NSMutableArray::array();
  for (std::size_t i = 0; i < 20000; ++i) list->addObject(Counted::alloc(i));
  const auto even = NSMutableArray::array();
  for (std::size_t i = 0; i < 40000; i += 2) even->addObject(Counted::alloc(i % 30000));
  Counted::asked = 0;
  EXPECT_EQ(vxfoundation_arrayByRemovingObjectsInArray(*list, even)->count(), 10000U);
  EXPECT_LE(Counted::asked, 20000U);
}
