#pragma once

#include <Foundation/NSBlock.h>
#include <Foundation/NSError.h>

/// The keys of an error's user information for the object that can recover from it, which implements
/// NSErrorRecoveryAttempting, and for the array of the titles of its options.
///@{
NS_EXPORT extern const NSRef<NSString>& NSRecoveryAttempterErrorKey;
NS_EXPORT extern const NSRef<NSString>& NSLocalizedRecoveryOptionsErrorKey;
///@}

/// Receives the outcome of a recovery: whether it succeeded, and the unchanged context.
using NSDidRecoverBlock = NSBlock<void(bool didRecover, void* contextInfo)>;

/// A member function of a delegate that can be called with the outcome and the context.
template <class Selector, class Delegate>
concept NSDidRecoverSelector =
    std::is_member_function_pointer_v<Selector> && std::invocable<Selector, Delegate&, bool, void*>;

/// The interface of objects that can recover from errors, which they implement in addition to deriving from
/// NSObject. The index is that of an option's title in the array in the error's user information.
class NS_EXPORT NSErrorRecoveryAttempting {
 public:
  virtual ~NSErrorRecoveryAttempting() = default;

  /// Attempts recovery and returns whether the option at the index recovered from the error.
  virtual bool attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex) = 0;

  /// attemptRecoveryFromError:optionIndex:delegate:didRecoverSelector:contextInfo:. Calls the delegate with
  /// the outcome on this thread before it returns, unless the delegate is nil.
  virtual void attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex,
                                        const NSRefPtr<NSDidRecoverBlock>& delegate, void* contextInfo) = 0;

  /// The same for a delegate, in a handle of either kind, and the member function of it that is to be called
  /// with (bool didRecover, void* contextInfo). A null selector with a delegate raises the invalid-argument
  /// exception before anything is done.
  ///@{
  template <class Delegate, NSDidRecoverSelector<Delegate> Selector>
  void attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex,
                                const NSRefPtr<Delegate>& delegate, Selector didRecoverSelector,
                                void* contextInfo) {
    if (delegate && !didRecoverSelector) NSRaiseNilReference();
    NSRefPtr<NSDidRecoverBlock> callback;
    if (delegate) callback = std::bind_front(didRecoverSelector, delegate);
    attemptRecoveryFromError(error, optionIndex, callback, contextInfo);
  }
  /// The same for a delegate that is not nil.
  template <class Delegate, NSDidRecoverSelector<Delegate> Selector>
  void attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex,
                                const NSRef<Delegate>& delegate, Selector didRecoverSelector,
                                void* contextInfo) {
    attemptRecoveryFromError(error, optionIndex, NSRefPtr<Delegate>(delegate), didRecoverSelector,
                             contextInfo);
  }
  /// The same without a delegate.
  template <class Selector>
  requires std::is_member_function_pointer_v<Selector>
  void attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex, std::nullptr_t,
                                Selector, void* contextInfo) {
    attemptRecoveryFromError(error, optionIndex, NSRefPtr<NSDidRecoverBlock>(), contextInfo);
  }
  ///@}
};
