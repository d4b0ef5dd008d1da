#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSErrorRecoveryAttempting.h>

/// The action of an option: takes the error, which may be nil, and returns whether it recovered from it.
using VXErrorRecoveryBlock = NSBlock<bool(const NSRefPtr<NSError>& error)>;

/// The class operation of attempters. It acts for the class that receives it: sent to a host's subclass, it
/// makes an object of that subclass.
template <class Self, class Base>
class [[gnu::visibility("default")]] VXErrorRecoveryAttempterLayer : public NSObjectLayer<Self, Base> {
 public:
  /// The base class from which to derive an attempter.
  template <class Derived>
  using Subclass = VXErrorRecoveryAttempterLayer<Derived, Self>;

  /// Returns a new attempter of the receiving class, without options; nil if its initialiser returns false.
  static NSRefPtr<Self> errorRecoveryAttempter() {
    const NSRef<Self> attempter = Self::alloc();
    if (!attempter->init()) return nullptr;
    return attempter;
  }
};

/// Recovery options, each a localised title and an action, for an error. A host adds its options and puts
/// the attempter and `recoveryOptions()` in the error's user information, under NSRecoveryAttempterErrorKey
/// and NSLocalizedRecoveryOptionsErrorKey. An option's index is its place in the order of adding. The
/// attempter owns both arrays. It may be used by one thread at a time.
class NS_EXPORT VXErrorRecoveryAttempter
    : public VXErrorRecoveryAttempterLayer<VXErrorRecoveryAttempter, NSObject>,
      public NSErrorRecoveryAttempting {
 public:
  /// The initialiser: returns whether the attempter can be used. Both arrays exist, empty, from allocation
  /// on.
  virtual bool init() { return true; }

  /// Return the arrays themselves, not copies. The title at an index belongs to the action at that index; a
  /// host that changes only one array breaks this, which is not checked.
  ///@{
  const NSRef<NSMutableArray>& titles() const noexcept { return titles_; }
  const NSRef<NSMutableArray>& blocks() const noexcept { return blocks_; }
  ///@}
  /// Replace an array by the argument, without copying it. Nil raises the invalid-argument exception.
  ///@{
  void setTitles(const NSRef<NSMutableArray>& titles) { titles_ = titles; }
  void setBlocks(const NSRef<NSMutableArray>& blocks) { blocks_ = blocks; }
  ///@}

  /// addRecoveryOptionWithLocalizedTitle:recoveryBlock:. Adds an option with the title itself and a copy of
  /// the action and its state. Asserts first that the title, then that the action is not nil; if the
  /// assertion handler returns, adding nil to the array raises the invalid-argument exception.
  virtual void addRecoveryOptionWithLocalizedTitle(NSStringArg localizedTitle,
                                                   const NSRefPtr<VXErrorRecoveryBlock>& recoveryBlock);
  /// Adds an option, by the function above, with the localised title "Cancel" that never recovers; all
  /// attempters use the same block as its action. Without the library's bundle the title is nil, which fails
  /// the assertion above.
  virtual void addCancelRecoveryOption();
  /// Returns the current titles in an immutable array.
  NSRef<NSArray> recoveryOptions() const { return titles_->copy(); }

  // The category VXFoundationDelegate.
  /// Call the action at the index with `error` itself. The first returns the action's result; the second,
  /// which does not call the first, passes it to the delegate, unless that is nil, on this thread and before
  /// it returns. Both raise the
  /// range exception if there is no action at the index, and the invalid-argument exception if a host has put
  /// anything but an action into `blocks`.
  ///@{
  bool attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex) override;
  void attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex,
                                const NSRefPtr<NSDidRecoverBlock>& delegate, void* contextInfo) override;
  ///@}
  using NSErrorRecoveryAttempting::attemptRecoveryFromError;

 private:
  // A class derived without the layer would silently make objects of its base class. It does not compile, as
  // its destructor would be inaccessible.
  template <class Self, class Base>
  friend class NSObjectLayer;
  template <class Self>
  friend class NSAllocated;
  ~VXErrorRecoveryAttempter() override = default;

  NSRef<NSMutableArray> titles_ = NSMutableArray::array();
  NSRef<NSMutableArray> blocks_ = NSMutableArray::array();
};
