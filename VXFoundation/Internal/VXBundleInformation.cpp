#include <VXFoundation/Internal/VXBundleInformation.h>

#include <Foundation/NSBundle.h>
#include <VXFoundation/VXFoundationConstants.h>

void VXRegisterBundleInformation() {
  NSBundle::setLibraryInformation(
      NSDictionary::dictionaryWithObjectsAndKeys({{"en", "CFBundleDevelopmentRegion"},
                                                  {"VXFoundation", "CFBundleExecutable"},
                                                  {VXFoundationBundleIdentifier, "CFBundleIdentifier"},
                                                  {"6.0", "CFBundleInfoDictionaryVersion"},
                                                  {"VXFoundation", "CFBundleName"},
                                                  {"FMWK", "CFBundlePackageType"},
                                                  {VX_VERSION, "CFBundleShortVersionString"},
                                                  {VX_VERSION, "CFBundleVersion"}}));
}
