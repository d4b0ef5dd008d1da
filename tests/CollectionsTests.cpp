#include <algorithm>
#include <map>
#include <random>

#include "Bytes.h"
#include "Support.h"

namespace {

Ref<NSNumber> number(std::int64_t value) { return NSNumber::numberWithInteger(value); }

}  // namespace

TEST(Collections, AListFollowsAVectorThroughRandomChanges) {
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

TEST(Collections, AMapKeepsTheOrderOfItsKeysThroughRandomChanges) {
  std::mt19937 random(8);
  const auto map = NSMutableDictionary::dictionary();
  std::vector<std::pair<std::int64_t, std::int64_t>> model;
  for (std::int64_t step = 0; step < 4000; ++step) {
    const auto key = static_cast<std::int64_t>(random() % 50);
    const auto found =
        std::find_if(model.begin(), model.end(), [key](const auto& pair) { return pair.first == key; });
    if (random() % 3 == 0) {
      map->removeObjectForKey(number(key));
      if (found != model.end()) model.erase(found);
    } else {
      map->setObject(number(step), number(key));
      if (found != model.end())
        found->second = step;
      else
        model.emplace_back(key, step);
    }
  }
  std::size_t index = 0;
  map->enumerateKeysAndObjectsUsingBlock([&](const Ref<NSObject>& key, const Ref<NSObject>& value, bool*) {
    EXPECT_TRUE(key->isEqual(number(model[index].first)) && value->isEqual(number(model[index].second)));
    ++index;
  });
  EXPECT_EQ(index, model.size());
  for (std::size_t i = 0; i < model.size(); ++i)
    EXPECT_TRUE(
        map->objectForKey(map->allKeys()->objectAtIndex(i))->isEqual(map->allValues()->objectAtIndex(i)));
  EXPECT_TRUE(map->isEqual(map->copy()) && map->copy()->isEqual(map));
}

TEST(Collections, KeysAreCopiedAndComparedByValue) {
  const auto key = NSMutableString::stringWithString("key");
  const auto map = NSMutableDictionary::dictionaryWithObjectsAndKeys({{"value", key}});
  key->appendString("!");
  EXPECT_TRUE(map->objectForKey("key"));
  EXPECT_FALSE(map->objectForKey(key));
  EXPECT_FALSE(map->objectForKey(nullptr));
  EXPECT_TRUE(NSSet::setWithObjects({"a", "b"})->isEqual(NSSet::setWithObjects({"b", "a", "b"})));
  EXPECT_FALSE(NSSet::setWithObjects({"a", "b"})->isEqual(NSSet::setWithObjects({"a", "c"})));
}

TEST(Collections, GrowableCopiesAreOfTheirOwn) {
  const Ref<NSSet> set = NSSet::setWithObjects({"a", "b"});
  const Ref<NSMutableSet> emptied = set->mutableCopy();
  emptied->removeAllObjects();
  EXPECT_EQ(std::string(*set->description()), "{a, b}");
  EXPECT_EQ(std::string(*emptied->description()), "{}");
  const Ref<NSDictionary> map = NSDictionary::dictionaryWithObject("value", "key");
  const Ref<NSMutableDictionary> cleared = map->mutableCopy();
  cleared->removeAllObjects();
  EXPECT_EQ(std::string(*map->description()), "{key = value}");
  EXPECT_EQ(std::string(*cleared->description()), "{}");
}

TEST(Collections, EqualityAsksTheElementInTheCollection) {
  struct Anything : NSObject::Subclass<Anything> {
    bool isEqual(const RefPtr<NSObject>&) const override { return true; }
  };
  const Ref<NSObject> anything = Anything::alloc();
  EXPECT_TRUE(NSArray::arrayWithObject(anything)->containsObject("x"));
  EXPECT_FALSE(NSArray::arrayWithObject("x")->containsObject(anything));
  const auto kept = NSMutableArray::arrayWithObjects({"x"});
  kept->removeObject(anything);
  EXPECT_EQ(kept->count(), 1U);
  const auto list = NSMutableArray::arrayWithObjects({"x", anything, "y", "x"});
  list->removeObjectsInArray(NSArray::arrayWithObjects({"x"}));
  EXPECT_TRUE(list->isEqual(NSArray::arrayWithObject("y"))) << *list->description();
}

TEST(Collections, NumbersAndErrorsAreEqualByValue) {
  EXPECT_TRUE(NSNumber::numberWithBool(true)->isEqual(number(1)));
  EXPECT_FALSE(number(1)->isBoolean());
  EXPECT_EQ(number(INT64_MIN)->integerValue(), INT64_MIN);
  const auto info = NSDictionary::dictionaryWithObject("what", NSLocalizedDescriptionKey);
  const auto growing = info->mutableCopy();
  const auto error = NSError::errorWithDomain("domain", -5, growing);
  growing->setObject("later", "key");
  EXPECT_TRUE(error->isEqual(NSError::errorWithDomain("domain", -5, info->mutableCopy())));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("domain", -5, nullptr)));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("domain", -6, info)));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("other", -5, info)));
  EXPECT_EQ(bytesOf(error->localizedDescription()), "what");
  EXPECT_EQ(bytesOf(NSError::errorWithDomain("d", 1, nullptr)->localizedDescription()), "error 1 of d");
  EXPECT_EQ(raised([] { NSError::errorWithDomain(nullptr, 1, nullptr); }), "NSInvalidArgumentException");
}

TEST(Collections, BytesThatAreAddedAreZero) {
  const auto data = NSMutableData::dataWithBytes("abc", 3);
  data->setLength(1);
  data->setLength(3);
  EXPECT_EQ(bytesOf(data), std::string("a\0\0", 3));
}
