#include <VXFoundation/Internal/VXBundleInformation.h>

#include <string_view>

#include <Foundation/NSBundle.h>
#include <VXFoundation/Internal/VXEmbeddedResources.h>
#include <VXFoundation/VXFoundationConstants.h>

namespace {

std::string_view contentOf(std::string_view name) {
  const VXEmbeddedResource* resource = VXEmbeddedResources;
  while (!resource->name.empty() && resource->name != name) ++resource;
  return resource->content;
}

}  // namespace

void VXRegisterBundleInformation() {
  NSBundle::setLibraryInformation(
      NSDictionary::dictionaryWithObjectsAndKeys({{"en", "CFBundleDevelopmentRegion"},
                                                  {"VXFoundation", "CFBundleExecutable"},
                                                  {VXFoundationBundleIdentifier, "CFBundleIdentifier"},
                                                  {"6.0", "CFBundleInfoDictionaryVersion"},
                                                  {"VXFoundation", "CFBundleName"},
                                                  {"FMWK", "CFBundlePackageType"},
                                                  {VX_VERSION, "CFBundleShortVersionString"},
                                                  {VX_VERSION, "CFBundleVersion"}}),
      VXEmbeddedResources->name.empty() ? nullptr : contentOf);
}
