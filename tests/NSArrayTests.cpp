#include <algorithm>
#include <random>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

namespace {

NSRef<NSNumber> number(std::int64_t value) { return NSNumber::numberWithInteger(value); }

}  // namespace

TEST(NSArray, AListFollowsAVectorThroughRandomChanges) {
  std::mt19937 random(7);
  const auto list = NSMutableArray::array();
  std::vector<std::int64_t> model;
  for (int step = 0; step < 4000; ++step) {
    const auto value = static_cast<std::int64_t>(random() % 20);
    const std::size_t place = random() % (model.size() + 2);
    const auto at = model.begin() + static_cast<std::ptrdiff_t>(std::min(place, model.size()));
    const bool inside = place < model.size();
    const std::string ifInside = inside ? "nothing" : "NSRangeException";
    switch (random() % 5) {
      case 0:
        list->addObject(number(value));
        model.push_back(value);
        break;
      case 1:
        EXPECT_EQ(raised([&] { list->insertObject(number(value), place); }),
                  place > model.size() ? "NSRangeException" : "nothing");
        if (place <= model.size()) model.insert(at, value);
        break;
      case 2:
        EXPECT_EQ(raised([&] { list->removeObjectAtIndex(place); }), ifInside);
        if (inside) model.erase(at);
        break;
      case 3:
        EXPECT_EQ(raised([&] { list->replaceObjectAtIndex(place, number(value)); }), ifInside);
        if (inside) *at = value;
        break;
      default:
        list->removeObject(number(value));
        model.erase(std::remove(model.begin(), model.end(), value), model.end());
    }
    ASSERT_EQ(list->count(), model.size());
  }
  for (std::size_t i = 0; i < model.size(); ++i)
    EXPECT_TRUE(list->objectAtIndex(i)->isEqual(number(model[i])));
  EXPECT_EQ(raised([&] { list->objectAtIndex(model.size()); }), "NSRangeException");
}

TEST(NSArray, EqualityAsksTheElementInTheCollection) {
  struct Anything : NSObject::Subclass<Anything> {
    bool isEqual(const NSRefPtr<NSObject>&) const override { return true; }
  };
  const NSRef<NSObject> anything = Anything::alloc();
  EXPECT_TRUE(NSArray::arrayWithObject(anything)->containsObject("x"));
  EXPECT_FALSE(NSArray::arrayWithObject("x")->containsObject(anything));
  const auto kept = NSMutableArray::arrayWithObjects({"x"});
  kept->removeObject(anything);
  EXPECT_EQ(kept->count(), 1U);
  const auto list = NSMutableArray::arrayWithObjects({"x", anything, "y", "x"});
  list->removeObjectsInArray(NSArray::arrayWithObjects({"x"}));
  EXPECT_TRUE(list->isEqual(NSArray::arrayWithObject("y"))) << *list->description();
}
