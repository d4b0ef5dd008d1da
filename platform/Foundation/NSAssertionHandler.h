#pragma once

#include <span>

#include <Foundation/NSString.h>

/// Handles failed assertions. Each thread has a handler; a host derives its own and installs it. The handler
/// decides what happens: the default one raises the internal-inconsistency exception with the filled-in
/// description as its reason; if a handler returns, the operation continues as if the assertion had held.
class NS_EXPORT NSAssertionHandler : public NSObject::Subclass<NSAssertionHandler> {
 public:
  /// Returns the calling thread's handler.
  static NSRef<NSAssertionHandler> currentHandler();
  /// Replaces the calling thread's handler; nil restores the default.
  static void setCurrentHandler(const NSRefPtr<NSAssertionHandler>& handler);

  /// Handles one failure. The object is the receiver: an object or, for a class operation, a class. The file
  /// is the name of a source unit, without folders. The description is a format for the arguments.
  virtual void handleFailureInMethod(const NSString& selector, const NSObject& object, const NSString& file,
                                     std::size_t lineNumber, const NSString& description,
                                     std::span<const NSFormatArg> arguments);
};
