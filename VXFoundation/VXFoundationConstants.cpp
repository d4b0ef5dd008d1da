#include <VXFoundation/VXFoundationConstants.h>

#include <VXFoundation/Internal/VXBundleInformation.h>

const NSRef<NSString>& VXFoundationBundleIdentifier = NSConstantString("org.vxfoundation.VXFoundation");
const NSRef<NSString>& VXSubclassResponsibilityException =
    NSConstantString("VXSubclassResponsibilityException");

namespace {

// When the library is loaded, as soon as the identifier exists.
[[maybe_unused]] const bool registered = (VXRegisterBundleInformation(), true);

}  // namespace
