#include <Foundation/NSArray.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/NSSet.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <random>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

namespace {

/// The time in seconds that a map with the objects as keys takes.
double timeOf(const NSArray& objects) {
  const std::clock_t start = std::clock();
  const auto map = NSMutableDictionary::dictionary();
  for (const NSRef<NSObject> object : objects) map->setObject(object, object);
  EXPECT_EQ(map->count(), objects.count());
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

constexpr std::uint32_t keyBits = 15;

/// Strings that nearly every table finds in one place if it uses FNV-1a, a usual hash without a key: at each
/// letter they choose between two words that leave the same lowest bits.
NSRef<NSArray> stringsThatCollide() {
  std::uint32_t state = 0x84222325;
  std::vector<std::array<std::string, 2>> choices;
  while (choices.size() < keyBits) {
    std::map<std::uint32_t, std::string> words;
    for (std::uint32_t next = 0;; ++next) {
      std::string word;
      for (std::uint32_t rest = next, i = 0; i < 4; ++i, rest /= 26)
        word += static_cast<char>('a' + rest % 26);
      std::uint32_t after = state;
      for (const char letter : word) after = (after ^ static_cast<unsigned char>(letter)) * 0x1B3U;
      const auto [found, isNew] = words.emplace(after % (1U << 20), word);
      if (isNew) continue;
      choices.push_back({found->second, word});
      state = found->first;
      break;
    }
  }
  const auto strings = NSMutableArray::array();
  for (std::uint32_t bits = 0; bits < 1U << keyBits; ++bits) {
    std::string string;
    for (std::uint32_t i = 0; i < keyBits; ++i) string += choices[i][bits >> i & 1];
    strings->addObject(text(string));
  }
  return strings;
}

NSRef<NSArray> numbersTimes(std::int64_t factor) {
  const auto numbers = NSMutableArray::array();
  for (std::int64_t i = 0; i < 1 << keyBits; ++i) numbers->addObject(number(i * factor));
  return numbers;
}

}  // namespace

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

TEST(NSDictionary, CraftedKeysCostNoMoreThanOthers) {
  const double usual = timeOf(*numbersTimes(1));
  EXPECT_LT(timeOf(*numbersTimes(std::int64_t{1} << 40)), 5 * usual + 0.05);
  EXPECT_LT(timeOf(*stringsThatCollide()), 5 * usual + 0.05);
}
