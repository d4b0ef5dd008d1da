#include <Foundation/NSException.h>
#include <VXFoundation/NSObject+VXAdditions.h>
#include <VXFoundation/VXFoundationConstants.h>

namespace VXAdditions {

void subclassShouldImplementSelector(const NSObject& receiver, Text selector) {
  const auto* classReceiver = dynamicCast<Class>(&receiver);
  const Ref<NSString> signature = NSString::stringWithFormat(
      "%@[%@ %@]", NSString::stringWithString(classReceiver ? Text("+") : Text("-")),
      NSStringFromClass(classReceiver ? *classReceiver : receiver.isa()), Ref<NSString>(selector.get()));
  NSException::raise(VXSubclassResponsibilityException,
                     "%@, is not implemented in the superclass, it is the subclass' responsibility.",
                     signature);
}

}  // namespace VXAdditions
