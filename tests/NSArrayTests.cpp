#include <Foundation/NSArray.h>

#include <algorithm>
#include <random>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

TEST(NSArray, FollowsAVectorThroughRandomChanges) {
  std::mt19937 random(7);
  const auto array = NSMutableArray::array();
  std::vector<std::int64_t> model;
  const auto expectDone = [](bool done, auto&& change) {
    EXPECT_EQ(raised(change), done ? "nothing" : "NSRangeException");
    return done;
  };
  for (int step = 0; step < 4000; ++step) {
    const auto value = static_cast<std::int64_t>(random() % 20);
    const std::size_t place = random() % (model.size() + 2);
    const auto at = model.begin() + static_cast<std::ptrdiff_t>(std::min(place, model.size()));
    const bool inside = place < model.size();
    switch (random() % 5) {
      case 0:
        array->addObject(number(value));
        model.push_back(value);
        break;
      case 1:
        if (expectDone(place <= model.size(), [&] { array->insertObject(number(value), place); }))
          model.insert(at, value);
        break;
      case 2:
        if (expectDone(inside, [&] { array->removeObjectAtIndex(place); })) model.erase(at);
        break;
      case 3:
        if (expectDone(inside, [&] { array->replaceObjectAtIndex(place, number(value)); })) *at = value;
        break;
      default:
        array->removeObject(number(value));
        model.erase(std::remove(model.begin(), model.end(), value), model.end());
    }
    ASSERT_EQ(array->count(), model.size());
  }
  for (std::size_t i = 0; i < model.size(); ++i)
    EXPECT_TRUE(array->objectAtIndex(i)->isEqual(number(model[i])));
  EXPECT_EQ(raised([&] { array->objectAtIndex(model.size()); }), "NSRangeException");
}

TEST(NSArray, SearchesSendIsEqualToTheElement) {
  struct Anything : NSObject::Subclass<Anything> {
    bool isEqual(const NSRefPtr<NSObject>&) const override { return true; }
  };
  const NSRef<NSObject> anything = Anything::alloc();
  EXPECT_TRUE(NSArray::arrayWithObject(anything)->containsObject("x"));
  EXPECT_FALSE(NSArray::arrayWithObject("x")->containsObject(anything));
  const auto kept = NSMutableArray::arrayWithObjects({"x"});
  kept->removeObject(anything);
  EXPECT_EQ(kept->count(), 1U);
  const auto array = NSMutableArray::arrayWithObjects({"x", anything, "y", "x"});
  array->removeObjectsInArray(NSArray::arrayWithObjects({"x"}));
  EXPECT_TRUE(array->isEqual(NSArray::arrayWithObject("y"))) << *array->description();
}
