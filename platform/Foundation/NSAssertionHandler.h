#pragma once

#include <span>

#include <Foundation/NSString.h>

/// What is told of a failed assertion. Each thread has one; a host derives its own and installs it. The
/// handler decides what happens: the default raises the internal-inconsistency exception with the filled-in
/// description as its reason; where one returns, the operation goes on as if the assertion had held.
class NS_EXPORT NSAssertionHandler : public NSObject::Subclass<NSAssertionHandler> {
 public:
  /// The calling thread's handler.
  static NSRef<NSAssertionHandler> currentHandler();
  /// Replaces the calling thread's handler; nil brings the default back.
  static void setCurrentHandler(const NSRefPtr<NSAssertionHandler>& handler);

  /// The receiver is an object or, for a class operation, a class; the file is the name of a source unit,
  /// without folders; the description is a format for the arguments.
  virtual void handleFailureInMethod(const NSString& selector, const NSObject& object, const NSString& file,
                                     std::size_t lineNumber, const NSString& description,
                                     std::span<const NSFormatArg> arguments);
};
