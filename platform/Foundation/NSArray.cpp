#include <Foundation/NSArray.h>

#include <algorithm>
#include <vector>

#include <Foundation/Internal/NSEqualityIndex.h>
#include <Foundation/NSException.h>
#include <Foundation/NSMutableString.h>

namespace {

void checkIndex(std::size_t index, std::size_t end) {
  if (index >= end)
    NSException::raise(NSRangeException, "index %lu is beyond the array's end %lu", index, end);
}

}  // namespace

NSRef<NSArray> NSArray::array() { return allocWithTail(0); }

NSRef<NSArray> NSArray::arrayWithObjects(std::initializer_list<NSObjectArg> objects) {
  return NSMutableArray::arrayWithObjects(objects)->copy();
}

NSArray::~NSArray() {
  for (NSObject* element : storage_.units()) element->release();
}

NSRef<NSObject> NSArray::objectAtIndex(std::size_t index) const {
  checkIndex(index, count());
  return *storage_.units()[index];
}

std::size_t NSArray::indexOfObject(NSObjectArg object) const {
  const NSRefPtr<NSObject> sought = object.get();
  std::size_t index = 0;
  for (const NSRef<NSObject> element : *this) {
    if (element->isEqual(sought)) return index;
    ++index;
  }
  return NSNotFound;
}

NSRef<NSString> NSArray::componentsJoinedByString(NSStringArg separator) const {
  const NSRef<NSString> between = separator.get();
  const NSRef<NSMutableString> joined = NSMutableString::string();
  enumerateObjectsUsingBlock([&](const NSRef<NSObject>& element, std::size_t index, bool*) {
    if (index > 0) joined->appendString(between);
    joined->appendString(element->description());
  });
  return joined->copy();
}

bool NSArray::isEqual(const NSRefPtr<NSObject>& other) const {
  const auto* array = NSDynamicCast<NSArray>(other.get());
  if (!array || array->count() != count()) return false;
  std::size_t index = 0;
  for (const NSRef<NSObject> element : *this)
    if (!element->isEqual(array->objectAtIndex(index++))) return false;
  return true;
}

NSRef<NSString> NSArray::description() const {
  return NSString::stringWithFormat("(%@)", componentsJoinedByString(", "));
}

NSRef<NSMutableArray> NSArray::mutableCopy() const {
  const NSRef<NSMutableArray> copy = NSMutableArray::arrayWithCapacity(count());
  copy->addObjectsFromArray(const_cast<NSArray&>(*this));
  return copy;
}

NSRef<NSObject> NSArray::mutableCopyObject() const { return mutableCopy(); }

void NSArray::appendRetained(const NSArray& from, NSArray& to) {
  const std::size_t added = from.count();
  to.storage_.append(from.storage_.units());
  for (NSObject* element : to.storage_.units().last(added)) element->retain();
}

NSRef<NSMutableArray> NSMutableArray::arrayWithCapacity(std::size_t capacity) {
  return allocWithTail(NSStorage<NSObject*>::bytesFor(capacity));
}

NSRef<NSMutableArray> NSMutableArray::arrayWithObjects(std::initializer_list<NSObjectArg> objects) {
  const NSRef<NSMutableArray> array = arrayWithCapacity(objects.size());
  for (const NSObjectArg& object : objects) array->addObject(object);
  return array;
}

NSRef<NSArray> NSMutableArray::fixedCopy() const {
  const NSRef<NSArray> copy = NSArray::allocWithTail(NSStorage<NSObject*>::bytesFor(count()));
  appendRetained(*this, *copy);
  return copy;
}

void NSMutableArray::addObject(NSObjectArg object) { insertObject(object, count()); }

void NSMutableArray::addObjectsFromArray(const NSRef<NSArray>& objects) {
  ++changes_;
  appendRetained(*objects, *this);
}

void NSMutableArray::insertObject(NSObjectArg object, std::size_t atIndex) {
  NSRef<NSObject> added = object.get();
  checkIndex(atIndex, count() + 1);
  storage_.grow(1);
  ++changes_;
  const auto units = storage_.units();
  std::copy_backward(units.begin() + static_cast<std::ptrdiff_t>(atIndex), units.end() - 1, units.end());
  added->retain();
  units[atIndex] = added.get();
}

void NSMutableArray::replaceObjectAtIndex(std::size_t index, NSObjectArg withObject) {
  const NSRef<NSObject> added = withObject.get();
  checkIndex(index, count());
  ++changes_;
  added->retain();
  std::exchange(storage_.units()[index], added.get())->release();
}

void NSMutableArray::removeObjectAtIndex(std::size_t index) {
  checkIndex(index, count());
  ++changes_;
  const auto units = storage_.units();
  const auto removed = NSRefPtr<NSObject>::adopt(units[index]);
  std::copy(units.begin() + static_cast<std::ptrdiff_t>(index) + 1, units.end(),
            units.begin() + static_cast<std::ptrdiff_t>(index));
  storage_.setCount(units.size() - 1);
}

void NSMutableArray::removeLastObject() {
  checkIndex(0, count());
  removeObjectAtIndex(count() - 1);
}

void NSMutableArray::removeAllObjects() {
  removeObjectsWhere([](NSObject&) { return true; });
}

void NSMutableArray::removeObject(NSObjectArg object) {
  const NSRefPtr<NSObject> sought = object.get();
  removeObjectsWhere([&](NSObject& element) { return element.isEqual(sought); });
}

void NSMutableArray::removeObjectsInArray(const NSRefPtr<NSArray>& objects) {
  if (!objects) return;
  const NSRef<NSArray> unwanted = objects->copy();
  NSEqualityIndex index;
  for (const NSRef<NSObject> each : *unwanted) index.add(*each);
  removeObjectsWhere([&](NSObject& element) {
    return index.containsOne(element, [&](const NSObject& each) {
      return element.isEqual(NSRefPtr<NSObject>(const_cast<NSObject*>(&each)));
    });
  });
}

// Decides first, because isEqual may raise, and releases last, because a destructor may look at the array.
template <class Unwanted>
void NSMutableArray::removeObjectsWhere(Unwanted&& unwanted) {
  std::vector<bool> isUnwanted;
  isUnwanted.reserve(count());
  for (const NSRef<NSObject> element : *this) isUnwanted.push_back(unwanted(*element));
  std::vector<NSRefPtr<NSObject>> removed;
  removed.reserve(static_cast<std::size_t>(std::count(isUnwanted.begin(), isUnwanted.end(), true)));
  ++changes_;
  const auto units = storage_.units();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (isUnwanted[i])
      removed.push_back(NSRefPtr<NSObject>::adopt(units[i]));
    else
      units[kept++] = units[i];
  }
  storage_.setCount(kept);
}
