#include <algorithm>
#include <random>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

namespace {

NSRef<NSNumber> number(std::int64_t value) { return NSNumber::numberWithInteger(value); }

}  // namespace

TEST(NSDictionary, AMapKeepsTheOrderOfItsKeysThroughRandomChanges) {
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
  map->enumerateKeysAndObjectsUsingBlock(
      [&](const NSRef<NSObject>& key, const NSRef<NSObject>& value, bool*) {
        EXPECT_TRUE(key->isEqual(number(model[index].first)) && value->isEqual(number(model[index].second)));
        ++index;
      });
  EXPECT_EQ(index, model.size());
  for (std::size_t i = 0; i < model.size(); ++i)
    EXPECT_TRUE(
        map->objectForKey(map->allKeys()->objectAtIndex(i))->isEqual(map->allValues()->objectAtIndex(i)));
  EXPECT_TRUE(map->isEqual(map->copy()) && map->copy()->isEqual(map));
}

TEST(NSDictionary, KeysAreCopiedAndComparedByValue) {
  const auto key = NSMutableString::stringWithString("key");
  const auto map = NSMutableDictionary::dictionaryWithObjectsAndKeys({{"value", key}});
  key->appendString("!");
  EXPECT_TRUE(map->objectForKey("key"));
  EXPECT_FALSE(map->objectForKey(key));
  EXPECT_FALSE(map->objectForKey(nullptr));
  EXPECT_TRUE(NSSet::setWithObjects({"a", "b"})->isEqual(NSSet::setWithObjects({"b", "a", "b"})));
  EXPECT_FALSE(NSSet::setWithObjects({"a", "b"})->isEqual(NSSet::setWithObjects({"a", "c"})));
}

TEST(NSDictionary, GrowableCopiesAreOfTheirOwn) {
  const NSRef<NSSet> set = NSSet::setWithObjects({"a", "b"});
  const NSRef<NSMutableSet> emptied = set->mutableCopy();
  emptied->removeAllObjects();
  EXPECT_EQ(std::string(*set->description()), "{a, b}");
  EXPECT_EQ(std::string(*emptied->description()), "{}");
  const NSRef<NSDictionary> map = NSDictionary::dictionaryWithObject("value", "key");
  const NSRef<NSMutableDictionary> cleared = map->mutableCopy();
  cleared->removeAllObjects();
  EXPECT_EQ(std::string(*map->description()), "{key = value}");
  EXPECT_EQ(std::string(*cleared->description()), "{}");
}
