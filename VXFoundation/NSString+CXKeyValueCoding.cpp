#include <VXFoundation/NSString+CXKeyValueCoding.h>

#include <Foundation/NSArray.h>

namespace CXKeyValueCoding {

RefPtr<NSString> stringWithKeyPathComponents(std::initializer_list<Object> components) {
  const Ref<NSMutableArray> list = NSMutableArray::arrayWithCapacity(components.size());
  for (const Object& component : components) {
    if (!component) break;
    list->addObject(component);
  }
  if (list->count() == 0) return nullptr;
  return list->componentsJoinedByString(".");
}

Ref<NSString> stringByAppendingKeyPath(const NSString& receiver, Object keyPath) {
  return receiver.stringByAppendingFormat(".%@", keyPath);
}

}  // namespace CXKeyValueCoding
