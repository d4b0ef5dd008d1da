#pragma once

#include <exception>
#include <memory>
#include <string>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

/// The name of the generic exception: a collection was changed during its walk.
FOUNDATION_EXPORT extern const Ref<NSString> NSGenericException;
/// The name of the internal-inconsistency exception: the default handler was told of a failed assertion.
FOUNDATION_EXPORT extern const Ref<NSString> NSInternalInconsistencyException;
/// The name of the invalid-argument exception: nil, or what is of a wrong kind or form.
FOUNDATION_EXPORT extern const Ref<NSString> NSInvalidArgumentException;
/// The name of the range exception: an index is beyond the end.
FOUNDATION_EXPORT extern const Ref<NSString> NSRangeException;

/// What is thrown, by value, for misuse. Its name tells the kind.
class FOUNDATION_EXPORT NSException : public std::exception {
 public:
  /// A nil name raises the invalid-argument exception; the others may be absent.
  NSException(Text name, Text reason, RefPtr<NSDictionary> userInfo = nullptr);

  /// Throws one whose reason is the format, filled in as by NSFormat.
  template <class... Arguments>
  [[noreturn]] static void raise(Text name, Text format, const Arguments&... arguments) {
    throw NSException(name, NSString::stringWithFormat(format, arguments...));
  }

  /// What it was made of; reason and user information may be absent.
  ///@{
  const Ref<NSString>& name() const noexcept { return name_; }
  const RefPtr<NSString>& reason() const noexcept { return reason_; }
  const RefPtr<NSDictionary>& userInfo() const noexcept { return userInfo_; }
  ///@}
  /// Name and reason in UTF-8, for as long as the exception or a copy of it lives.
  const char* what() const noexcept override { return what_->c_str(); }

 private:
  Ref<NSString> name_;
  RefPtr<NSString> reason_;
  RefPtr<NSDictionary> userInfo_;
  std::shared_ptr<const std::string> what_;
};
