#pragma once

#include <cstdint>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

/// The key in the user information for the text that is shown to people.
NS_EXPORT extern const NSRef<NSString>& NSLocalizedDescriptionKey;
/// The key for the NSError that caused this one.
NS_EXPORT extern const NSRef<NSString>& NSUnderlyingErrorKey;
/// The domain of errors whose code is an OSStatus.
NS_EXPORT extern const NSRef<NSString>& NSOSStatusErrorDomain;

/// What went wrong: a domain, a code within it, and further information. Immutable, so that any number of
/// threads may use one at once.
class NS_EXPORT NSError : public NSObject::Subclass<NSError> {
 public:
  /// Returns a new error. A nil domain raises the invalid-argument exception; nil user information becomes an
  /// empty dictionary.
  static NSRef<NSError> errorWithDomain(NSStringArg domain, std::int64_t code,
                                        const NSRefPtr<NSDictionary>& userInfo);

  /// What the error was created with; the code has a meaning only within the domain.
  ///@{
  const NSRef<NSString>& domain() const noexcept { return domain_; }
  std::int64_t code() const noexcept { return code_; }
  const NSRef<NSDictionary>& userInfo() const noexcept { return userInfo_; }
  ///@}
  /// Returns the string under NSLocalizedDescriptionKey or, if there is none, one made from domain and code.
  NSRef<NSString> localizedDescription() const;

  /// Errors are equal if their domains, codes and user information are. The hash combines the first two. The
  /// description is the domain, the code and the localised description.
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return domain_->hash() ^ static_cast<std::size_t>(code_); }
  NSRef<NSString> description() const override;
  ///@}

 protected:
  /// Keeps the objects themselves, not copies.
  NSError(NSRef<NSString> domain, std::int64_t code, NSRef<NSDictionary> userInfo)
      : domain_(std::move(domain)), code_(code), userInfo_(std::move(userInfo)) {}

 private:
  NSRef<NSString> domain_;
  std::int64_t code_;
  NSRef<NSDictionary> userInfo_;
};
