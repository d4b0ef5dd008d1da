#include <VXFoundation/NSString+CXKeyValueCoding.h>

#include <Foundation/NSArray.h>

namespace CXKeyValueCoding {

NSRefPtr<NSString> stringWithKeyPathComponents(std::initializer_list<NSObjectArg> components) {
  const NSRef<NSMutableArray> path = NSMutableArray::arrayWithCapacity(components.size());
  for (const NSObjectArg& component : components) {
    if (!component) break;
    path->addObject(component);
  }
  if (path->count() == 0) return nullptr;
  return path->componentsJoinedByString(".");
}

NSRef<NSString> stringByAppendingKeyPath(const NSString& receiver, NSObjectArg keyPath) {
  return receiver.stringByAppendingFormat(".%@", keyPath);
}

}  // namespace CXKeyValueCoding
