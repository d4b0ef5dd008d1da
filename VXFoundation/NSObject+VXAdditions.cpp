#include <Foundation/NSException.h>
#include <VXFoundation/NSObject+VXAdditions.h>
#include <VXFoundation/VXFoundationConstants.h>

namespace VXAdditions {

void subclassShouldImplementSelector(const NSObject& receiver, NSStringArg selector) {
  const auto* classReceiver = NSDynamicCast<NSClass>(&receiver);
  const NSRef<NSString> signature = NSString::stringWithFormat(
      "%@[%@ %@]", NSString::stringWithString(classReceiver ? NSStringArg("+") : NSStringArg("-")),
      NSStringFromClass(classReceiver ? *classReceiver : receiver.isa()), selector.get());
  NSException::raise(VXSubclassResponsibilityException,
                     "%@, is not implemented in the superclass, it is the subclass' responsibility.",
                     signature);
}

}  // namespace VXAdditions
