#pragma once

#include <exception>
#include <memory>
#include <string>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

/// The name of the generic exception: a collection was changed during its walk.
NS_EXPORT extern const NSRef<NSString> NSGenericException;
/// The name of the internal-inconsistency exception: the default handler was told of a failed assertion.
NS_EXPORT extern const NSRef<NSString> NSInternalInconsistencyException;
/// The name of the invalid-argument exception: nil, or what is of a wrong kind or form.
NS_EXPORT extern const NSRef<NSString> NSInvalidArgumentException;
/// The name of the range exception: an index is beyond the end.
NS_EXPORT extern const NSRef<NSString> NSRangeException;

/// What is thrown, by value, for misuse. Its name tells the kind.
class NS_EXPORT NSException : public std::exception {
 public:
  /// A nil name raises the invalid-argument exception; the others may be absent.
  NSException(NSStringArg name, NSStringArg reason, NSRefPtr<NSDictionary> userInfo = nullptr);

  /// Throws one whose reason is the format, filled in as by NSFormat.
  template <class... Arguments>
  [[noreturn]] static void raise(NSStringArg name, NSStringArg format, const Arguments&... arguments) {
    throw NSException(name, NSString::stringWithFormat(format, arguments...));
  }

  /// What it was made of; reason and user information may be absent.
  ///@{
  const NSRef<NSString>& name() const noexcept { return name_; }
  const NSRefPtr<NSString>& reason() const noexcept { return reason_; }
  const NSRefPtr<NSDictionary>& userInfo() const noexcept { return userInfo_; }
  ///@}
  /// Name and reason in UTF-8, for as long as the exception or a copy of it lives.
  const char* what() const noexcept override { return what_->c_str(); }

 private:
  NSRef<NSString> name_;
  NSRefPtr<NSString> reason_;
  NSRefPtr<NSDictionary> userInfo_;
  std::shared_ptr<const std::string> what_;
};
