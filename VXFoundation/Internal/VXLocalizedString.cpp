#include <VXFoundation/Internal/VXLocalizedString.h>

#include <atomic>

#include <Foundation/NSBundle.h>
#include <VXFoundation/VXFoundationConstants.h>

namespace {

// Returns this library's bundle, nil until there is one. From then on it is kept: finding it takes longer
// than looking a string up in it.
NSRefPtr<NSBundle> libraryBundle() {
  static constinit std::atomic<NSBundle*> kept = nullptr;
  if (NSBundle* const bundle = kept.load(std::memory_order_acquire)) return NSRefPtr<NSBundle>(bundle);
  const NSRefPtr<NSBundle> found = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  NSBundle* none = nullptr;
  if (found && kept.compare_exchange_strong(none, found.get())) NSRefPtr<NSBundle>(found).leak();
  return found;
}

}  // namespace

NSRefPtr<NSString> VXLocalizedString(NSStringArg key, NSStringArg table) {
  const NSRefPtr<NSBundle> bundle = libraryBundle();
  return bundle ? NSRefPtr<NSString>(bundle->localizedStringForKey(key, "", table)) : nullptr;
}
