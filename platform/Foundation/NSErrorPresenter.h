#pragma once

#include <optional>

#include <Foundation/NSArray.h>
#include <Foundation/NSError.h>

/// Shows errors to the user. A host derives its own and says how.
class NS_EXPORT NSErrorPresenter {
 public:
  virtual ~NSErrorPresenter() = default;

  /// Shows the error with the options in its user information and has its recovery attempter carry out the
  /// chosen one. Answers whether that recovered; without an answer or an attempter it did not.
  bool presentError(const NSRef<NSError>& error);

 protected:
  /// The index of the option that the user chose; absent when there is none, or none was chosen.
  virtual std::optional<std::size_t> choose(const NSError& error, const NSArray& localizedOptions) = 0;
};
