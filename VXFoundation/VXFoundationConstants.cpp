#include <VXFoundation/VXFoundationConstants.h>

const NSRef<NSString>& VXFoundationBundleIdentifier = NSConstantString("org.vxfoundation.VXFoundation");
const NSRef<NSString>& VXSubclassResponsibilityException =
    NSConstantString("VXSubclassResponsibilityException");
