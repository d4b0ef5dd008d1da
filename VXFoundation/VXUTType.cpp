#include <VXFoundation/VXUTType.h>

#include <CoreServices/UTType.h>
#include <Foundation/NSDictionary.h>
#include <VXFoundation/VXUTTypeDynamicIdentifier.h>

namespace {

// Made once, so that a query between declared types allocates nothing.
const Ref<NSString> dynamicPrefix = NSString::stringWithString("dyn.a");
const Ref<NSString> optionalMark = NSString::stringWithString("?");

bool isDynamic(const NSString& identifier) {
  return identifier.hasPrefix(dynamicPrefix) && identifier.length() > dynamicPrefix->length();
}

bool offersAll(const NSDictionary& offered, const NSDictionary& required) {
  bool all = true;
  required.enumerateKeysAndObjectsUsingBlock(
      [&](const Ref<NSObject>& key, const Ref<NSObject>& value, bool* stop) {
        const RefPtr<NSObject> found = offered.objectForKey(key);
        if (found && found->isEqual(value)) return;
        if (Ref(dynamicCast<NSString>(key))->hasPrefix(optionalMark)) return;
        all = false;
        *stop = true;
      });
  return all;
}

}  // namespace

bool VXUTTypeConformsTo(Text identifier, Text otherIdentifier) {
  if (UTTypeConformsTo(identifier, otherIdentifier)) return true;
  const auto type = identifier.borrow();
  const auto other = otherIdentifier.borrow();
  if (!type || !isDynamic(*type) || !other || !isDynamic(*other)) return false;
  const RefPtr<NSDictionary> offered = VXUTTypeDynamicIdentifierMap(*type);
  if (!offered) return false;
  const RefPtr<NSDictionary> required = VXUTTypeDynamicIdentifierMap(*other);
  return required && offersAll(*offered, *required);
}

bool VXUTTypeConformsToAnyInCollection(Text identifier, const RefPtr<NSFastEnumeration>& collection) {
  if (!collection) return false;
  for (const Ref<NSObject> member : *collection) {
    const Ref<NSString> other = dynamicCast<NSString>(member);
    if (VXUTTypeConformsTo(identifier, other)) return true;
  }
  return false;
}
