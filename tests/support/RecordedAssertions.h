#pragma once

#include <Foundation/NSAssertionHandler.h>

#include "tests/support/Support.h"

/// While it lives, this thread's assertion handler returns, and records each failure as a line.
class RecordedAssertions {
 public:
  RecordedAssertions() { NSAssertionHandler::setCurrentHandler(handler_); }
  ~RecordedAssertions() { NSAssertionHandler::setCurrentHandler(nullptr); }

  /// Returns "Class selector unit:line description" for each failure since the last call, with a + before a
  /// class that was the receiver itself.
  std::vector<std::string> take() { return std::exchange(handler_->failures, {}); }

 private:
  struct Handler : NSAssertionHandler::Subclass<Handler> {
    void handleFailureInMethod(const NSString& selector, const NSObject& object, const NSString& file,
                               std::size_t line, const NSString& description,
                               std::span<const NSFormatArg> arguments) override {
      const auto* receiver = NSDynamicCast<NSClass>(&object);
      const auto report = NSString::stringWithFormat("%@%@ %@ %@:%lu %@", text(receiver ? "+" : ""),
                                                     NSStringFromClass(receiver ? *receiver : object.isa()),
                                                     selector, file, line, NSFormat(description, arguments));
      failures.push_back(static_cast<std::string>(*report));
    }
    std::vector<std::string> failures;
  };

  NSRef<Handler> handler_ = Handler::alloc();
};
