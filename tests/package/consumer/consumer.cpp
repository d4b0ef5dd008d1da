#include <VXFoundation/VXFoundation.h>

#include <iostream>

int main() {
  const auto bytes = NSData::dataWithBytes("foobar", 6);
  const auto bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  std::cout << *VXBaseConversion::base64String(*bytes) << '\n'
            << bundle->localizedStringForKey("Cancel", "", nullptr) << '\n';
}
