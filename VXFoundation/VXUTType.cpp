#include <VXFoundation/VXUTType.h>

#include <CoreServices/UTType.h>
#include <Foundation/NSDictionary.h>
#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>

namespace {

// Made once, so that a query between declared types allocates nothing.
const NSRef<NSString>& dynamicPrefix = NSConstantString("dyn.a");
const NSRef<NSString>& optionalMark = NSConstantString("?");

bool isDynamic(const NSString& identifier) {
  return identifier.hasPrefix(dynamicPrefix) && identifier.length() > dynamicPrefix->length();
}

bool offersAll(const NSDictionary& offered, const NSDictionary& required) {
  bool all = true;
  required.enumerateKeysAndObjectsUsingBlock(
      [&](const NSRef<NSObject>& key, const NSRef<NSObject>& value, bool* stop) {
        const NSRefPtr<NSObject> found = offered.objectForKey(key);
        if (found && found->isEqual(value)) return;
        if (NSRef(NSDynamicCast<NSString>(key))->hasPrefix(optionalMark)) return;
        all = false;
        *stop = true;
      });
  return all;
}

}  // namespace

bool VXUTTypeConformsTo(NSStringArg identifier, NSStringArg otherIdentifier) {
  if (UTTypeConformsTo(identifier, otherIdentifier)) return true;
  const auto type = identifier.borrow();
  const auto other = otherIdentifier.borrow();
  if (!type || !isDynamic(*type) || !other || !isDynamic(*other)) return false;
  const NSRefPtr<NSDictionary> offered = VXUTTypeDynamicIdentifierMap(*type);
  if (!offered) return false;
  const NSRefPtr<NSDictionary> required = VXUTTypeDynamicIdentifierMap(*other);
  return required && offersAll(*offered, *required);
}

bool VXUTTypeConformsToAnyInCollection(NSStringArg identifier,
                                       const NSRefPtr<NSFastEnumeration>& collection) {
  if (!collection) return false;
  for (const NSRef<NSObject> member : *collection) {
    const NSRef<NSString> other = NSDynamicCast<NSString>(member);
    if (VXUTTypeConformsTo(identifier, other)) return true;
  }
  return false;
}
