#include <VXFoundation/Internal/VXAssertion.h>

#include <Foundation/NSAssertionHandler.h>

void VXReportFailedAssertion(const NSObject& receiver, const VXAssertionSite& site) {
  const NSRef<NSString> condition = site.condition.get();
  const NSFormatArg arguments[] = {condition};
  NSAssertionHandler::currentHandler()->handleFailureInMethod(
      *site.selector.borrow(), receiver, *site.unit.borrow(), site.line,
      *NSString::stringWithString("Invalid parameter not satisfying: %@"), arguments);
}
