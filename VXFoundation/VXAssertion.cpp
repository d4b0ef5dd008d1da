#include <VXFoundation/VXAssertion.h>

#include <Foundation/NSAssertionHandler.h>

void VXReportFailedAssertion(const NSObject& receiver, const VXAssertionSite& site) {
  const Ref<NSString> condition = site.condition.get();
  const FormatArgument arguments[] = {condition};
  NSAssertionHandler::currentHandler()->handleFailureInMethod(
      *site.selector.borrow(), receiver, *site.unit.borrow(), site.line,
      *NSString::stringWithString("Invalid parameter not satisfying: %@"), arguments);
}
