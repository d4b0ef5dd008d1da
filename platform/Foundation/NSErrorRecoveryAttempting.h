#pragma once

#include <Foundation/NSBlock.h>
#include <Foundation/NSError.h>

/// The keys of an error's user information for the object that can recover from it, which implements
/// NSErrorRecoveryAttempting, and for the list of the titles of its options.
///@{
NS_EXPORT extern const NSRef<NSString> NSRecoveryAttempterErrorKey;
NS_EXPORT extern const NSRef<NSString> NSLocalizedRecoveryOptionsErrorKey;
///@}

/// What is told of the outcome of a recovery: whether it was one, and the context unchanged.
using NSDidRecoverBlock = NSBlock<void(bool didRecover, void* contextInfo)>;

/// What can recover from an error, beside being an object. The index is that of an option's title in the
/// list in the error's user information.
class NS_EXPORT NSErrorRecoveryAttempting {
 public:
  virtual ~NSErrorRecoveryAttempting() = default;

  /// Whether the option at the index recovered from the error.
  virtual bool attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex) = 0;

  /// attemptRecoveryFromError:optionIndex:delegate:didRecoverSelector:contextInfo:. Tells the delegate on
  /// this thread before it returns; an absent one hears nothing.
  virtual void attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex,
                                        const NSRefPtr<NSDidRecoverBlock>& delegate, void* contextInfo) = 0;

  /// The same for a delegate and the operation of it that is to be called. A nil selector with a delegate
  /// raises the invalid-argument exception before anything is done.
  template <class Delegate, class Declaring>
  void attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex,
                                const NSRefPtr<Delegate>& delegate,
                                void (Declaring::*didRecoverSelector)(bool didRecover, void* contextInfo),
                                void* contextInfo) {
    if (delegate && !didRecoverSelector) NSRaiseNilReference();
    NSRefPtr<NSDidRecoverBlock> told;
    if (delegate) told = std::bind_front(didRecoverSelector, delegate);
    attemptRecoveryFromError(error, optionIndex, told, contextInfo);
  }
};
