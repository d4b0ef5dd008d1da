#include <Foundation/NSAssertionHandler.h>

#include <Foundation/NSException.h>

namespace {

thread_local RefPtr<NSAssertionHandler> handlerOfThread;

}  // namespace

Ref<NSAssertionHandler> NSAssertionHandler::currentHandler() {
  if (!handlerOfThread) handlerOfThread = NSAssertionHandler::alloc();
  return handlerOfThread;
}

void NSAssertionHandler::setCurrentHandler(const RefPtr<NSAssertionHandler>& handler) {
  handlerOfThread = handler;
}

void NSAssertionHandler::handleFailureInMethod(const NSString&, const NSObject&, const NSString&, std::size_t,
                                               const NSString& description,
                                               std::span<const FormatArgument> arguments) {
  throw NSException(NSInternalInconsistencyException, NSFormat(description, arguments));
}
