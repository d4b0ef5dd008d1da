#include <VXFoundation/NSArray+VXAdditions.h>

#include <algorithm>
#include <vector>

#include <Foundation/NSMutableString.h>
#include <VXFoundation/VXAssertion.h>

namespace VXAdditions {

namespace {

// The texts of one list, of which one is chosen at a time: a wheel of an odometer.
struct Wheel {
  std::vector<Ref<NSString>> texts;
  std::size_t counter = 0;
};

std::vector<Ref<NSArray>> listsOf(const NSArray& outer) {
  std::vector<Ref<NSArray>> lists;
  for (const Ref<NSObject> list : outer) lists.emplace_back(dynamicCast<NSArray>(list));
  return lists;
}

Wheel wheelOf(const Ref<NSArray>& list) {
  Wheel wheel;
  for (const Ref<NSObject> each : *list) wheel.texts.emplace_back(dynamicCast<NSString>(each));
  return wheel;
}

Ref<NSMutableString> combinationOf(const std::vector<Wheel>& wheels) {
  std::size_t length = 0;
  for (const Wheel& wheel : wheels) length += wheel.texts[wheel.counter]->length();
  const Ref<NSMutableString> joined = NSMutableString::stringWithCapacity(length);
  for (const Wheel& wheel : wheels) joined->appendString(wheel.texts[wheel.counter]);
  return joined;
}

// Whether there is a next combination: not when every wheel has come round.
bool turn(std::vector<Wheel>& wheels) {
  for (Wheel& wheel : wheels) {
    if (++wheel.counter < wheel.texts.size()) return true;
    wheel.counter = 0;
  }
  return false;
}

}  // namespace

Ref<NSMutableArray> vxfoundation_combinationsJoined(const Ref<NSArray>& lists) {
  const Ref<NSMutableArray> combinations = NSMutableArray::array();
  std::vector<Wheel> wheels;
  const std::vector<Ref<NSArray>> inner = listsOf(*lists);
  if (std::any_of(inner.begin(), inner.end(), [](const auto& list) { return list->count() == 0; }))
    return combinations;
  wheels.reserve(inner.size());
  for (const Ref<NSArray>& list : inner) wheels.push_back(wheelOf(list));
  do combinations->addObject(combinationOf(wheels));
  while (turn(wheels));
  return combinations;
}

Ref<NSMutableArray> vxfoundation_map(const NSArray& receiver, VXMapping each) {
  const auto require = [&receiver](bool holds, std::size_t line, Text condition) {
    VXAssertParameter(holds, receiver, {"vxfoundation_map:", "NSArray+VXAdditions", line, condition});
  };
  require(bool(each), 82, "each != nil");
  const Ref<NSMutableArray> mapped = NSMutableArray::arrayWithCapacity(receiver.count());
  receiver.enumerateObjectsUsingBlock([&](const Ref<NSObject>& element, std::size_t index, bool* stop) {
    const RefPtr<NSObject> mappedObject = each(element, index, stop);
    require(bool(mappedObject), 88, "mappedObject != nil");
    mapped->addObject(mappedObject);
  });
  return mapped;
}

Ref<NSMutableArray> vxfoundation_arrayByRemovingObjectsInArray(const NSArray& receiver,
                                                               const RefPtr<NSArray>& objects) {
  const Ref<NSMutableArray> kept = receiver.mutableCopy();
  kept->removeObjectsInArray(objects);
  return kept;
}

}  // namespace VXAdditions
