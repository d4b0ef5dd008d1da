#include <VXFoundation/NSArray+VXAdditions.h>

#include <optional>
#include <span>
#include <vector>

#include <Foundation/NSMutableString.h>
#include <VXFoundation/Internal/VXAssertion.h>

namespace VXAdditions {

namespace {

// The strings of one array, one of which is chosen at a time: a wheel of an odometer.
struct Wheel {
  std::vector<NSRef<NSString>> strings;
  std::size_t counter = 0;
};

// Returns no value if one of the arrays is empty; what comes after that one is not examined.
std::optional<std::vector<NSRef<NSArray>>> arraysIn(const NSArray& outer) {
  std::vector<NSRef<NSArray>> arrays;
  for (const NSRef<NSObject> each : outer) {
    arrays.emplace_back(NSDynamicCast<NSArray>(each));
    if (arrays.back()->count() == 0) return std::nullopt;
  }
  return arrays;
}

Wheel wheelOf(const NSRef<NSArray>& array) {
  Wheel wheel;
  for (const NSRef<NSObject> each : *array) wheel.strings.emplace_back(NSDynamicCast<NSString>(each));
  return wheel;
}

NSRef<NSMutableString> joined(const NSString& first, const NSString& rest) {
  const std::size_t length = first.length() + rest.length();
  const bool wide = !first.isASCII() || !rest.isASCII();
  const NSRef<NSMutableString> both =
      NSMutableString::stringWithCapacity(length * (wide ? sizeof(char16_t) : 1));
  both->appendString(first);
  both->appendString(rest);
  return both;
}

NSRef<NSString> chosenStrings(std::span<const Wheel> wheels) {
  const NSRef<NSMutableString> chosen = NSMutableString::string();
  for (const Wheel& wheel : wheels) chosen->appendString(wheel.strings[wheel.counter]);
  return chosen;
}

// Advances to the next combination. Returns false once every wheel has come round.
bool turn(std::span<Wheel> wheels) {
  for (Wheel& wheel : wheels) {
    if (++wheel.counter < wheel.strings.size()) return true;
    wheel.counter = 0;
  }
  return false;
}

}  // namespace

NSRef<NSMutableArray> vxfoundation_combinationsJoined(const NSRef<NSArray>& arrays) {
  const NSRef<NSMutableArray> combinations = NSMutableArray::array();
  const auto inner = arraysIn(*arrays);
  if (!inner) return combinations;
  std::vector<Wheel> wheels;
  wheels.reserve(inner->size());
  for (const NSRef<NSArray>& array : *inner) wheels.push_back(wheelOf(array));
  if (wheels.empty()) {
    combinations->addObject(NSMutableString::string());
    return combinations;
  }
  const std::span<Wheel> slower = std::span(wheels).subspan(1);
  do {
    const NSRef<NSString> rest = chosenStrings(slower);
    for (const NSRef<NSString>& first : wheels.front().strings)
      combinations->addObject(joined(*first, *rest));
  } while (turn(slower));
  return combinations;
}

NSRef<NSMutableArray> vxfoundation_map(const NSArray& receiver, VXMapping each) {
  const auto require = [&receiver](bool holds, std::size_t line, NSStringArg condition) {
    VXAssertParameter(holds, receiver, {"vxfoundation_map:", "NSArray+VXAdditions", line, condition});
  };
  require(bool(each), 82, "each != nil");
  const NSRef<NSMutableArray> mapped = NSMutableArray::arrayWithCapacity(receiver.count());
  receiver.enumerateObjectsUsingBlock([&](const NSRef<NSObject>& element, std::size_t index, bool* stop) {
    const NSRefPtr<NSObject> mappedObject = each(element, index, stop);
    require(bool(mappedObject), 88, "mappedObject != nil");
    mapped->addObject(mappedObject);
  });
  return mapped;
}

NSRef<NSMutableArray> vxfoundation_arrayByRemovingObjectsInArray(const NSArray& receiver,
                                                                 const NSRefPtr<NSArray>& objects) {
  const NSRef<NSMutableArray> kept = receiver.mutableCopy();
  kept->removeObjectsInArray(objects);
  return kept;
}

}  // namespace VXAdditions
