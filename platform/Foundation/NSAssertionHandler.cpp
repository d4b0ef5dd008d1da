#include <Foundation/NSAssertionHandler.h>

#include <Foundation/NSException.h>

namespace {

thread_local NSRefPtr<NSAssertionHandler> handlerOfThread;

}  // namespace

NSRef<NSAssertionHandler> NSAssertionHandler::currentHandler() {
  if (!handlerOfThread) handlerOfThread = NSAssertionHandler::alloc();
  return handlerOfThread;
}

void NSAssertionHandler::setCurrentHandler(const NSRefPtr<NSAssertionHandler>& handler) {
  handlerOfThread = handler;
}

void NSAssertionHandler::handleFailureInMethod(const NSString&, const NSObject&, const NSString&, std::size_t,
                                               const NSString& description,
                                               std::span<const NSFormatArg> arguments) {
  throw NSException(NSInternalInconsistencyException, NSFormat(description, arguments));
}
