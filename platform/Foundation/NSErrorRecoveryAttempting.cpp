#include <Foundation/NSErrorRecoveryAttempting.h>

const Ref<NSString> NSRecoveryAttempterErrorKey = NSString::stringWithString("NSRecoveryAttempter");
const Ref<NSString> NSLocalizedRecoveryOptionsErrorKey =
    NSString::stringWithString("NSLocalizedRecoveryOptions");
