#include <VXFoundation/NSString+CXKeyValueCoding.h>

#include <Foundation/NSArray.h>

namespace CXKeyValueCoding {

NSRefPtr<NSString> stringWithKeyPathComponents(std::initializer_list<NSObjectArg> components) {
  const NSRef<NSMutableArray> list = NSMutableArray::arrayWithCapacity(components.size());
  for (const NSObjectArg& component : components) {
    if (!component) break;
    list->addObject(component);
  }
  if (list->count() == 0) return nullptr;
  return list->componentsJoinedByString(".");
}

NSRef<NSString> stringByAppendingKeyPath(const NSString& receiver, NSObjectArg keyPath) {
  return receiver.stringByAppendingFormat(".%@", keyPath);
}

}  // namespace CXKeyValueCoding
