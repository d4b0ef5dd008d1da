#include <VXFoundation/VXErrorRecoveryAttempter.h>

#include <VXFoundation/Internal/VXAssertion.h>
#include <VXFoundation/Internal/VXLocalizedString.h>

namespace {

const NSRef<VXErrorRecoveryBlock>& cancelBlock() {
  static const auto& never = *new NSRef<VXErrorRecoveryBlock>(
      NSRefPtr<VXErrorRecoveryBlock>([](const NSRefPtr<NSError>&) { return false; }));
  return never;
}

bool perform(const NSArray& blocks, std::size_t optionIndex, const NSRefPtr<NSError>& error) {
  const NSRef<VXErrorRecoveryBlock> action =
      NSDynamicCast<VXErrorRecoveryBlock>(blocks.objectAtIndex(optionIndex));
  return (*action)(error);
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
  blocks_->addObject(NSRef<VXErrorRecoveryBlock>(recoveryBlock)->duplicate());
}

void VXErrorRecoveryAttempter::addCancelRecoveryOption() {
  addRecoveryOptionWithLocalizedTitle(VXLocalizedString("Cancel"), cancelBlock());
}

bool VXErrorRecoveryAttempter::attemptRecoveryFromError(const NSRefPtr<NSError>& error,
                                                        std::size_t optionIndex) {
  return perform(*blocks_, optionIndex, error);
}

void VXErrorRecoveryAttempter::attemptRecoveryFromError(const NSRefPtr<NSError>& error,
                                                        std::size_t optionIndex,
                                                        const NSRefPtr<NSDidRecoverBlock>& delegate,
                                                        void* contextInfo) {
  const bool didRecover = perform(*blocks_, optionIndex, error);
  if (delegate) (*delegate)(didRecover, contextInfo);
}
