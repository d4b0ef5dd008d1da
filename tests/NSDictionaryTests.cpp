#include <Foundation/NSArray.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/NSSet.h>

#include <algorithm>
#include <random>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

TEST(NSDictionary, KeepsTheOrderOfItsKeysThroughRandomChanges) {
  std::mt19937 random(8);
  const auto dictionary = NSMutableDictionary::dictionary();
  std::vector<std::pair<std::int64_t, std::int64_t>> model;
  for (std::int64_t step = 0; step < 4000; ++step) {
    const auto key = static_cast<std::int64_t>(random() % 50);
    const auto found =
        std::find_if(model.begin(), model.end(), [key](const auto& pair) { return pair.first == key; });
    if (random() % 3 == 0) {
      dictionary->removeObjectForKey(number(key));
      if (found != model.end()) model.erase(found);
    } else {
      dictionary->setObject(number(step), number(key));
      if (found != model.end())
        found->second = step;
      else
        model.emplace_back(key, step);
    }
  }
  std::size_t index = 0;
  dictionary->enumerateKeysAndObjectsUsingBlock([&](const auto& key, const auto& value, bool*) {
    EXPECT_TRUE(key->isEqual(number(model[index].first)) && value->isEqual(number(model[index].second)));
    EXPECT_EQ(dictionary->allKeys()->objectAtIndex(index), key);
    EXPECT_EQ(dictionary->allValues()->objectAtIndex(index), value);
    EXPECT_EQ(dictionary->objectForKey(key), value);
    ++index;
  });
  EXPECT_EQ(index, model.size());
  EXPECT_TRUE(dictionary->isEqual(dictionary->copy()) && dictionary->copy()->isEqual(dictionary));
}

TEST(NSDictionary, KeysAreCopiedAndComparedByValue) {
  const auto key = NSMutableString::stringWithString("key");
  const auto dictionary = NSMutableDictionary::dictionaryWithObjectsAndKeys({{"value", key}});
  key->appendString("!");
  EXPECT_TRUE(dictionary->objectForKey("key"));
  EXPECT_FALSE(dictionary->objectForKey(key));
  EXPECT_FALSE(dictionary->objectForKey(nullptr));
  EXPECT_TRUE(NSSet::setWithObjects({"a", "b"})->isEqual(NSSet::setWithObjects({"b", "a", "b"})));
  EXPECT_FALSE(NSSet::setWithObjects({"a", "b"})->isEqual(NSSet::setWithObjects({"a", "c"})));
}

TEST(NSDictionary, ChangingAMutableCopyLeavesTheOriginal) {
  const auto expectApart = [](const auto& original, const char* description) {
    const auto copy = original->mutableCopy();
    copy->removeAllObjects();
    EXPECT_EQ(bytesOf(original->description()), description);
    EXPECT_EQ(bytesOf(copy->description()), "{}");
  };
  expectApart(NSSet::setWithObjects({"a", "b"}), "{a, b}");
  expectApart(NSDictionary::dictionaryWithObject("value", "key"), "{key = value}");
}
