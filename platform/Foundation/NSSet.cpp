#include <Foundation/NSSet.h>

#include <Foundation/NSArray.h>

Ref<NSSet> NSSet::set() { return alloc(); }

Ref<NSSet> NSSet::setWithObjects(std::initializer_list<Object> objects) {
  return NSMutableSet::setWithObjects(objects)->copy();
}

bool NSSet::isEqual(const RefPtr<NSObject>& other) const {
  const auto* set = dynamicCast<NSSet>(other.get());
  if (!set || set->count() != count()) return false;
  for (const NSOrderedTable::Row& row : set->table_.rows())
    if (!table_.indexOf(row.key)) return false;
  return true;
}

Ref<NSString> NSSet::description() const {
  const Ref<NSMutableArray> elements = NSMutableArray::arrayWithCapacity(count());
  for (const Ref<NSObject> element : *this) elements->addObject(element);
  return NSString::stringWithFormat("{%@}", elements->componentsJoinedByString(", "));
}

Ref<NSMutableSet> NSSet::mutableCopy() const { return NSMutableSet::alloc(table_); }

Ref<NSObject> NSSet::mutableCopyObject() const { return mutableCopy(); }

Ref<NSMutableSet> NSMutableSet::setWithObjects(std::initializer_list<Object> objects) {
  const Ref<NSMutableSet> made = set();
  for (const Object& object : objects) made->addObject(object);
  return made;
}

void NSMutableSet::addObject(Object object) {
  const Ref<NSObject> added = object.get();
  if (table_.indexOf(added)) return;
  table_.put(added, nullptr);
  ++changes_;
}

void NSMutableSet::removeObject(Object object) {
  if (const auto index = table_.indexOf(object.get())) {
    ++changes_;
    table_.removeAt(*index);
  }
}

void NSMutableSet::removeAllObjects() {
  ++changes_;
  table_.removeAll();
}
