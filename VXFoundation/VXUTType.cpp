#include <VXFoundation/VXUTType.h>

#include <CoreServices/Internal/UTTypeRelation.h>
#include <CoreServices/UTType.h>
#include <Foundation/NSDictionary.h>
#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>

namespace {

const NSRef<NSString>& optionalMark = NSConstantString("?");

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
  const auto type = identifier.borrow();
  const auto other = otherIdentifier.borrow();
  if (!type || !other) return false;
  if (const auto settled = UTTypeRelation(*type, *other)) return *settled;
  if (!UTTypeIsDynamic(*type) || !UTTypeIsDynamic(*other)) return false;
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
