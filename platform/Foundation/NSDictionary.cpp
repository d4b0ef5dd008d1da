#include <Foundation/NSDictionary.h>

#include <Foundation/NSArray.h>

Ref<NSDictionary> NSDictionary::dictionary() { return alloc(); }

Ref<NSDictionary> NSDictionary::dictionaryWithObject(Object object, Object forKey) {
  return dictionaryWithObjectsAndKeys({{object, forKey}});
}

Ref<NSDictionary> NSDictionary::dictionaryWithObjectsAndKeys(std::initializer_list<ObjectAndKey> pairs) {
  return NSMutableDictionary::dictionaryWithObjectsAndKeys(pairs)->copy();
}

RefPtr<NSObject> NSDictionary::objectForKey(Object key) const {
  const auto index = table_.indexOf(key.get());
  return index ? table_.rows()[*index].value : nullptr;
}

Ref<NSArray> NSDictionary::allKeys() const {
  const Ref<NSMutableArray> keys = NSMutableArray::arrayWithCapacity(count());
  for (const NSOrderedTable::Row& row : table_.rows()) keys->addObject(row.key);
  return keys;
}

Ref<NSArray> NSDictionary::allValues() const {
  const Ref<NSMutableArray> values = NSMutableArray::arrayWithCapacity(count());
  for (const NSOrderedTable::Row& row : table_.rows()) values->addObject(row.value);
  return values;
}

bool NSDictionary::isEqual(const RefPtr<NSObject>& other) const {
  const auto* map = dynamicCast<NSDictionary>(other.get());
  if (!map || map->count() != count()) return false;
  for (const NSOrderedTable::Row& row : table_.rows())
    if (!row.value->isEqual(map->objectForKey(row.key))) return false;
  return true;
}

Ref<NSString> NSDictionary::description() const {
  const Ref<NSMutableArray> pairs = NSMutableArray::arrayWithCapacity(count());
  for (const NSOrderedTable::Row& row : table_.rows())
    pairs->addObject(NSString::stringWithFormat("%@ = %@", row.key, row.value));
  return NSString::stringWithFormat("{%@}", pairs->componentsJoinedByString("; "));
}

Ref<NSMutableDictionary> NSDictionary::mutableCopy() const { return NSMutableDictionary::alloc(table_); }

Ref<NSObject> NSDictionary::mutableCopyObject() const { return mutableCopy(); }

Ref<NSMutableDictionary> NSMutableDictionary::dictionaryWithObjectsAndKeys(
    std::initializer_list<ObjectAndKey> pairs) {
  const Ref<NSMutableDictionary> map = dictionary();
  for (const auto& [object, key] : pairs) map->setObject(object, key);
  return map;
}

void NSMutableDictionary::setObject(Object object, Object forKey) {
  const Ref<NSObject> value = object.get();
  const Ref<NSObject> key = Ref<NSObject>(forKey.get())->copy();
  ++changes_;
  table_.put(key, value);
}

void NSMutableDictionary::removeObjectForKey(Object key) {
  if (const auto index = table_.indexOf(key.get())) {
    ++changes_;
    table_.removeAt(*index);
  }
}

void NSMutableDictionary::removeAllObjects() {
  ++changes_;
  table_.removeAll();
}
