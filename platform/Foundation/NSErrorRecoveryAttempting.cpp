#include <Foundation/NSErrorRecoveryAttempting.h>

const NSRef<NSString>& NSRecoveryAttempterErrorKey = NSConstantString("NSRecoveryAttempter");
const NSRef<NSString>& NSLocalizedRecoveryOptionsErrorKey = NSConstantString("NSLocalizedRecoveryOptions");
