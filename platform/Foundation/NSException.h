#pragma once

#include <exception>
#include <memory>
#include <string>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

/// The name of the generic exception: a collection was changed during its walk.
NS_EXPORT extern const NSRef<NSString>& NSGenericException;
/// The name of the internal-inconsistency exception: an assertion failed under the default handler.
NS_EXPORT extern const NSRef<NSString>& NSInternalInconsistencyException;
/// The name of the invalid-argument exception: nil, or an argument of the wrong kind or form.
NS_EXPORT extern const NSRef<NSString>& NSInvalidArgumentException;
/// The name of the range exception: an index is beyond the end.
NS_EXPORT extern const NSRef<NSString>& NSRangeException;

/// Thrown by value for misuse. Its name identifies the kind.
class NS_EXPORT NSException : public std::exception {
 public:
  /// A nil name raises the invalid-argument exception; the other arguments may be nil.
  NSException(NSStringArg name, NSStringArg reason, NSRefPtr<NSDictionary> userInfo = nullptr);

  /// Throws an exception whose reason is the format, filled in as by NSFormat.
  template <class... Arguments>
  [[noreturn]] static void raise(NSStringArg name, NSStringArg format, const Arguments&... arguments) {
    throw NSException(name, NSString::stringWithFormat(format, arguments...));
  }

  /// What the exception was created with; reason and user information may be nil.
  ///@{
  const NSRef<NSString>& name() const noexcept { return name_; }
  const NSRefPtr<NSString>& reason() const noexcept { return reason_; }
  const NSRefPtr<NSDictionary>& userInfo() const noexcept { return userInfo_; }
  ///@}
  /// Returns name and reason in UTF-8, valid for as long as the exception or a copy of it lives.
  const char* what() const noexcept override { return what_->c_str(); }

 private:
  NSRef<NSString> name_;
  NSRefPtr<NSString> reason_;
  NSRefPtr<NSDictionary> userInfo_;
  std::shared_ptr<const std::string> what_;
};
