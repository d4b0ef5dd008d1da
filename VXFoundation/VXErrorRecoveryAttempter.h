#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSErrorRecoveryAttempting.h>

/// What an option does about an error, which may be absent; whether it recovered from it.
using VXErrorRecoveryBlock = NSBlock<bool(const NSRefPtr<NSError>& error)>;

/// The class operation of attempters, for the class that receives it, so that a host's subclass makes
/// objects of its own.
template <class Self, class Base>
class [[gnu::visibility("default")]] VXErrorRecoveryAttempterLayer : public NSObjectLayer<Self, Base> {
 public:
  /// The base to derive an attempter from.
  template <class Derived>
  using Subclass = VXErrorRecoveryAttempterLayer<Derived, Self>;

  /// A new attempter of the receiving class, without options; absent when its initialiser says no.
  static NSRefPtr<Self> errorRecoveryAttempter() {
    const NSRef<Self> attempter = Self::alloc();
    if (!attempter->init()) return nullptr;
    return attempter;
  }
};

/// Recovery options, each a localised title and an action, for an error. A host adds its options and puts
/// the attempter and `recoveryOptions()` in the error's user information, under NSRecoveryAttempterErrorKey
/// and NSLocalizedRecoveryOptionsErrorKey. An option's index is its place in the order of adding. The
/// attempter owns both lists. For one thread at a time.
class NS_EXPORT VXErrorRecoveryAttempter
    : public VXErrorRecoveryAttempterLayer<VXErrorRecoveryAttempter, NSObject>,
      public NSErrorRecoveryAttempting {
 public:
  /// The initialiser: whether the attempter can be used. Both lists are there, and empty, from allocation on.
  virtual bool init() { return true; }

  /// The lists themselves. The title at an index belongs to the action there; a host that changes one list
  /// alone breaks that, which is not checked.
  ///@{
  const NSRef<NSMutableArray>& titles() const noexcept { return titles_; }
  const NSRef<NSMutableArray>& blocks() const noexcept { return blocks_; }
  ///@}
  /// Replace a list by the one given, without a copy. Nil raises the invalid-argument exception.
  ///@{
  void setTitles(const NSRef<NSMutableArray>& titles) { titles_ = titles; }
  void setBlocks(const NSRef<NSMutableArray>& blocks) { blocks_ = blocks; }
  ///@}

  /// addRecoveryOptionWithLocalizedTitle:recoveryBlock:. Asserts first the title, then the action. Where the
  /// assertion handler returns, the list that is given nil raises the invalid-argument exception.
  void addRecoveryOptionWithLocalizedTitle(NSStringArg localizedTitle,
                                           const NSRefPtr<VXErrorRecoveryBlock>& recoveryBlock);
  /// Adds an option with the localised title "Cancel" that never recovers; its action is one and the same
  /// block for all attempters. Without the library's bundle there is no title, which is asserted as above.
  void addCancelRecoveryOption();
  /// The titles at this moment, in a list that stays as it is.
  NSRef<NSArray> recoveryOptions() const { return titles_->copy(); }

  // The category VXFoundationDelegate.
  /// Calls the action at the index with the very error. Answers its result, or tells it to the delegate, on
  /// this thread and before it returns; an absent one hears nothing. Raises the range exception from the
  /// number of actions on, and the invalid-argument exception when a host put something else into `blocks`.
  ///@{
  bool attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex) override;
  void attemptRecoveryFromError(const NSRefPtr<NSError>& error, std::size_t optionIndex,
                                const NSRefPtr<NSDidRecoverBlock>& delegate, void* contextInfo) override;
  ///@}
  using NSErrorRecoveryAttempting::attemptRecoveryFromError;

 private:
  // A class that derives without the layer would quietly make objects of its base; it does not compile, as
  // its destructor would be inaccessible.
  template <class Self, class Base>
  friend class NSObjectLayer;
  template <class Self>
  friend class NSAllocated;
  ~VXErrorRecoveryAttempter() override = default;

  NSRef<NSMutableArray> titles_ = NSMutableArray::array();
  NSRef<NSMutableArray> blocks_ = NSMutableArray::array();
};
