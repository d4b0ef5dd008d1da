#include <Foundation/NSErrorRecoveryAttempting.h>

const NSRef<NSString> NSRecoveryAttempterErrorKey = NSString::stringWithString("NSRecoveryAttempter");
const NSRef<NSString> NSLocalizedRecoveryOptionsErrorKey =
    NSString::stringWithString("NSLocalizedRecoveryOptions");
