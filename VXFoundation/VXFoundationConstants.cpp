#include <VXFoundation/VXFoundationConstants.h>

const NSRef<NSString> VXFoundationBundleIdentifier =
    NSString::stringWithString("org.vxfoundation.VXFoundation");
const NSRef<NSString> VXSubclassResponsibilityException =
    NSString::stringWithString("VXSubclassResponsibilityException");
