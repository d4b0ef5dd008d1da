#include <VXFoundation/Internal/VXLocalizedString.h>

#include <Foundation/NSBundle.h>
#include <VXFoundation/VXFoundationConstants.h>

NSRefPtr<NSString> VXLocalizedString(NSStringArg key, NSStringArg table) {
  const NSRefPtr<NSBundle> bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  if (!bundle) return nullptr;
  return bundle->localizedStringForKey(key, "", table);
}
