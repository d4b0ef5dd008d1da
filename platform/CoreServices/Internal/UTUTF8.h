#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <Foundation/NSString.h>

/// A string in UTF-8, without a copy where it is ASCII.
class UTUTF8 {
 public:
  /// A string with an unpaired surrogate has no UTF-8.
  explicit UTUTF8(const NSString& string);
  UTUTF8(const UTUTF8&) = delete;
  UTUTF8& operator=(const UTUTF8&) = delete;

  explicit operator bool() const { return view_.has_value(); }
  std::string_view operator*() const { return *view_; }

 private:
  std::string copy_;
  std::optional<std::string_view> view_;
};
