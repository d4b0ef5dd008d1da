#pragma once

#include "tests/support/Support.h"

/// While it lives, this thread's assertion handler returns and keeps what it was told, a line a failure.
class RecordedAssertions {
 public:
  RecordedAssertions() { NSAssertionHandler::setCurrentHandler(handler_); }
  ~RecordedAssertions() { NSAssertionHandler::setCurrentHandler(nullptr); }

  /// "Class selector unit:line description" of each failure since the last call, with a + before a class
  /// that was the receiver itself.
  std::vector<std::string> take() { return std::exchange(handler_->failures, {}); }

 private:
  struct Handler : NSAssertionHandler::Subclass<Handler> {
    void handleFailureInMethod(const NSString& selector, const NSObject& object, const NSString& file,
                               std::size_t line, const NSString& description,
                               std::span<const NSFormatArg> arguments) override {
      const auto* receiver = NSDynamicCast<NSClass>(&object);
      const auto told = NSString::stringWithFormat("%@%@ %@ %@:%lu %@", text(receiver ? "+" : ""),
                                                   NSStringFromClass(receiver ? *receiver : object.isa()),
                                                   selector, file, line, NSFormat(description, arguments));
      failures.push_back(static_cast<std::string>(*told));
    }
    std::vector<std::string> failures;
  };

  NSRef<Handler> handler_ = Handler::alloc();
};
