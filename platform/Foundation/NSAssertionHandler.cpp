#include <Foundation/NSAssertionHandler.h>

#include <pthread.h>

#include <new>

#include <Foundation/NSException.h>

namespace {

NSAssertionHandler* asHandler(void* value) { return static_cast<NSAssertionHandler*>(value); }

// The slot that holds a reference to a thread's handler. A thread_local object would be destroyed too early:
// on the main thread before exit handlers run, on others before thread_local objects of the host.
pthread_key_t slot() {
  static const pthread_key_t key = [] {
    pthread_key_t made{};
    const auto release = [](void* value) { asHandler(value)->release(); };
    if (pthread_key_create(&made, release) != 0) throw std::bad_alloc();
    return made;
  }();
  return key;
}

const NSRef<NSAssertionHandler>& defaultHandler() {
  static const auto& handler = *new NSRef<NSAssertionHandler>(NSAssertionHandler::alloc());
  return handler;
}

}  // namespace

NSRef<NSAssertionHandler> NSAssertionHandler::currentHandler() {
  auto* const installed = asHandler(pthread_getspecific(slot()));
  return installed ? NSRef<NSAssertionHandler>(*installed) : defaultHandler();
}

void NSAssertionHandler::setCurrentHandler(const NSRefPtr<NSAssertionHandler>& handler) {
  auto* const previous = asHandler(pthread_getspecific(slot()));
  if (pthread_setspecific(slot(), handler.get()) != 0) throw std::bad_alloc();
  NSRefPtr(handler).leak();
  NSRefPtr<NSAssertionHandler>::adopt(previous);
}

void NSAssertionHandler::handleFailureInMethod(const NSString&, const NSObject&, const NSString&, std::size_t,
                                               const NSString& description,
                                               std::span<const NSFormatArg> arguments) {
  throw NSException(NSInternalInconsistencyException, NSFormat(description, arguments));
}
