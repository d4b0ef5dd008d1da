#include <VXFoundation/VXUTType.h>

#include <algorithm>

#include <CoreServices/Internal/UTTypeRelation.h>
#include <CoreServices/UTType.h>
#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>

namespace {

constexpr char optionalMark = '?';

bool offersAll(const VXUTTypeDynamicIdentifier& offered, const VXUTTypeDynamicIdentifier& required) {
  return std::all_of(required.pairs().begin(), required.pairs().end(), [&](const auto& pair) {
    return pair.key.starts_with(optionalMark) || offered.has(pair);
  });
}

}  // namespace

bool VXUTTypeConformsTo(NSStringArg identifier, NSStringArg otherIdentifier) {
  const auto type = identifier.borrow();
  const auto other = otherIdentifier.borrow();
  if (!type || !other) return false;
  if (const auto settled = UTTypeRelation(*type, *other)) return *settled;
  if (!UTTypeIsDynamic(*type) || !UTTypeIsDynamic(*other)) return false;
  const VXUTTypeDynamicIdentifier offered(*type), required(*other);
  return offered.text() && required.text() && offersAll(offered, required);
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
