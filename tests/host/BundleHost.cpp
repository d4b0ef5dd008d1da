// Prints what the library's bundle says for "Cancel", or that there is no bundle.
#include <VXFoundation/VXFoundation.h>

#include <iostream>

int main() {
  const NSRefPtr<NSBundle> bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  if (!bundle)
    std::cout << "(no bundle)";
  else
    std::cout << bundle->localizedStringForKey("Cancel", "", nullptr);
}
