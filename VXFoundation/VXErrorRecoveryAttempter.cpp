#include <VXFoundation/VXErrorRecoveryAttempter.h>

#include <VXFoundation/Internal/VXAssertion.h>
#include <VXFoundation/Internal/VXLocalizedString.h>

namespace {

NSRef<VXErrorRecoveryBlock> cancelBlock() {
  static const NSRef<VXErrorRecoveryBlock> never =
      NSRefPtr<VXErrorRecoveryBlock>([](const NSRefPtr<NSError>&) { return false; });
  return never;
}

}  // namespace

void VXErrorRecoveryAttempter::addRecoveryOptionWithLocalizedTitle(
    NSStringArg localizedTitle, const NSRefPtr<VXErrorRecoveryBlock>& recoveryBlock) {
  const auto require = [this](bool holds, std::size_t line, NSStringArg condition) {
    VXAssertParameter(
        holds, *this,
        {"addRecoveryOptionWithLocalizedTitle:recoveryBlock:", "VXErrorRecoveryAttempter", line, condition});
  };
  require(bool(localizedTitle), 45, "localizedTitle != nil");
  require(bool(recoveryBlock), 46, "recoveryBlock != nil");
  titles_->addObject(localizedTitle.get());
  blocks_->addObject(recoveryBlock);  // blocks are immutable: a reference is as good as a copy
}

void VXErrorRecoveryAttempter::addCancelRecoveryOption() {
  addRecoveryOptionWithLocalizedTitle(VXLocalizedString("Cancel"), cancelBlock());
}

bool VXErrorRecoveryAttempter::attemptRecoveryFromError(const NSRefPtr<NSError>& error,
                                                        std::size_t optionIndex) {
  const NSRef<VXErrorRecoveryBlock> action =
      NSDynamicCast<VXErrorRecoveryBlock>(blocks_->objectAtIndex(optionIndex));
  return (*action)(error);
}

void VXErrorRecoveryAttempter::attemptRecoveryFromError(const NSRefPtr<NSError>& error,
                                                        std::size_t optionIndex,
                                                        const NSRefPtr<NSDidRecoverBlock>& delegate,
                                                        void* contextInfo) {
  const bool didRecover = attemptRecoveryFromError(error, optionIndex);
  if (delegate) (*delegate)(didRecover, contextInfo);
}
