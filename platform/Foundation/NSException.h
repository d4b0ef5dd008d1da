#pragma once

#include <exception>
#include <memory>
#include <string>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

FOUNDATION_EXPORT extern const Ref<NSString> NSGenericException;
FOUNDATION_EXPORT extern const Ref<NSString> NSInternalInconsistencyException;
FOUNDATION_EXPORT extern const Ref<NSString> NSInvalidArgumentException;
FOUNDATION_EXPORT extern const Ref<NSString> NSRangeException;

/// What is thrown, by value, for misuse. Its name tells the kind.
class FOUNDATION_EXPORT NSException : public std::exception {
 public:
  NSException(Text name, Text reason, RefPtr<NSDictionary> userInfo = nullptr);

  template <class... Arguments>
  [[noreturn]] static void raise(Text name, Text format, const Arguments&... arguments) {
    throw NSException(name, NSString::stringWithFormat(format, arguments...));
  }

  const Ref<NSString>& name() const noexcept { return name_; }
  const RefPtr<NSString>& reason() const noexcept { return reason_; }
  const RefPtr<NSDictionary>& userInfo() const noexcept { return userInfo_; }
  /// Name and reason in UTF-8.
  const char* what() const noexcept override { return what_->c_str(); }

 private:
  Ref<NSString> name_;
  RefPtr<NSString> reason_;
  RefPtr<NSDictionary> userInfo_;
  std::shared_ptr<const std::string> what_;
};
