#include <Foundation/NSSet.h>

#include <Foundation/NSArray.h>

NSRef<NSSet> NSSet::set() { return alloc(); }

NSRef<NSSet> NSSet::setWithObjects(std::initializer_list<NSObjectArg> objects) {
  return NSMutableSet::setWithObjects(objects)->copy();
}

bool NSSet::isEqual(const NSRefPtr<NSObject>& other) const {
  const auto* set = NSDynamicCast<NSSet>(other.get());
  if (!set || set->count() != count()) return false;
  for (const NSOrderedTable::Row& row : set->table_.rows())
    if (!table_.indexOf(row.key)) return false;
  return true;
}

NSRef<NSString> NSSet::description() const {
  const NSRef<NSMutableArray> elements = NSMutableArray::arrayWithCapacity(count());
  for (const NSRef<NSObject> element : *this) elements->addObject(element);
  return NSString::stringWithFormat("{%@}", elements->componentsJoinedByString(", "));
}

NSRef<NSMutableSet> NSSet::mutableCopy() const { return NSMutableSet::alloc(table_); }

NSRef<NSObject> NSSet::mutableCopyObject() const { return mutableCopy(); }

NSRef<NSMutableSet> NSMutableSet::setWithObjects(std::initializer_list<NSObjectArg> objects) {
  const NSRef<NSMutableSet> made = set();
  for (const NSObjectArg& object : objects) made->addObject(object);
  return made;
}

void NSMutableSet::addObject(NSObjectArg object) {
  const NSRef<NSObject> added = object.get();
  if (table_.indexOf(added)) return;
  table_.put(added, nullptr);
  ++changes_;
}

void NSMutableSet::removeObject(NSObjectArg object) {
  if (const auto index = table_.indexOf(object.get())) {
    ++changes_;
    table_.removeAt(*index);
  }
}

void NSMutableSet::removeAllObjects() {
  ++changes_;
  table_.removeAll();
}
