#include <VXFoundation/VXLocalizedString.h>

#include <Foundation/NSBundle.h>
#include <VXFoundation/VXFoundationConstants.h>

RefPtr<NSString> VXLocalizedString(Text key) {
  const RefPtr<NSBundle> bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  if (!bundle) return nullptr;
  return bundle->localizedStringForKey(key, "", nullptr);
}
