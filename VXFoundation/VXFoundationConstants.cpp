#include <VXFoundation/VXFoundationConstants.h>

const Ref<NSString> VXFoundationBundleIdentifier =
    NSString::stringWithString("org.vxfoundation.VXFoundation");
const Ref<NSString> VXSubclassResponsibilityException =
    NSString::stringWithString("VXSubclassResponsibilityException");
