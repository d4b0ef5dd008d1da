#pragma once

#include <optional>

#include <Foundation/NSArray.h>
#include <Foundation/NSError.h>

/// Shows errors to the user. A host derives its own class, which decides how to show them.
class NS_EXPORT NSErrorPresenter {
 public:
  virtual ~NSErrorPresenter() = default;

  /// Shows the error with the options in its user information and has its recovery attempter carry out the
  /// chosen one. Returns whether that recovered from the error; false if nothing was chosen or there is no
  /// attempter.
  [[nodiscard]] bool presentError(const NSRef<NSError>& error);

 protected:
  /// Returns the index of the option that the user chose, or std::nullopt if there is no option or none was
  /// chosen.
  virtual std::optional<std::size_t> choose(const NSError& error, const NSArray& localizedOptions) = 0;
};
