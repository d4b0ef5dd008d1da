#include <Foundation/NSDictionary.h>

#include <Foundation/NSArray.h>

NSRef<NSDictionary> NSDictionary::dictionary() { return alloc(); }

NSRef<NSDictionary> NSDictionary::dictionaryWithObject(NSObjectArg object, NSObjectArg forKey) {
  return dictionaryWithObjectsAndKeys({{object, forKey}});
}

NSRef<NSDictionary> NSDictionary::dictionaryWithObjectsAndKeys(std::initializer_list<ObjectAndKey> pairs) {
  return NSMutableDictionary::dictionaryWithObjectsAndKeys(pairs)->copy();
}

NSRefPtr<NSObject> NSDictionary::objectForKey(NSObjectArg key) const {
  const auto index = table_.indexOf(key.get());
  return index ? table_.rows()[*index].value : nullptr;
}

NSRef<NSArray> NSDictionary::allKeys() const {
  const NSRef<NSMutableArray> keys = NSMutableArray::arrayWithCapacity(count());
  for (const NSOrderedTable::Row& row : table_.rows()) keys->addObject(row.key);
  return keys;
}

NSRef<NSArray> NSDictionary::allValues() const {
  const NSRef<NSMutableArray> values = NSMutableArray::arrayWithCapacity(count());
  for (const NSOrderedTable::Row& row : table_.rows()) values->addObject(row.value);
  return values;
}

bool NSDictionary::isEqual(const NSRefPtr<NSObject>& other) const {
  const auto* dictionary = NSDynamicCast<NSDictionary>(other.get());
  if (!dictionary || dictionary->count() != count()) return false;
  for (const NSOrderedTable::Row& row : table_.rows())
    if (!row.value->isEqual(dictionary->objectForKey(row.key))) return false;
  return true;
}

NSRef<NSString> NSDictionary::description() const {
  const NSRef<NSMutableArray> pairs = NSMutableArray::arrayWithCapacity(count());
  for (const NSOrderedTable::Row& row : table_.rows())
    pairs->addObject(NSString::stringWithFormat("%@ = %@", row.key, row.value));
  return NSString::stringWithFormat("{%@}", pairs->componentsJoinedByString("; "));
}

NSRef<NSMutableDictionary> NSDictionary::mutableCopy() const { return NSMutableDictionary::alloc(table_); }

NSRef<NSObject> NSDictionary::mutableCopyObject() const { return mutableCopy(); }

NSRef<NSMutableDictionary> NSMutableDictionary::dictionaryWithObjectsAndKeys(
    std::initializer_list<ObjectAndKey> pairs) {
  const NSRef<NSMutableDictionary> made = dictionary();
  for (const auto& [object, key] : pairs) made->setObject(object, key);
  return made;
}

void NSMutableDictionary::setObject(NSObjectArg object, NSObjectArg forKey) {
  const NSRef<NSObject> value = object.get();
  const NSRef<NSObject> key = NSRef<NSObject>(forKey.get())->copy();
  ++changes_;
  table_.put(key, value);
}

void NSMutableDictionary::removeObjectForKey(NSObjectArg key) {
  if (const auto index = table_.indexOf(key.get())) {
    ++changes_;
    table_.removeAt(*index);
  }
}

void NSMutableDictionary::removeAllObjects() {
  ++changes_;
  table_.removeAll();
}
