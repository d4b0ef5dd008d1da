#include <VXFoundation/VXErrorRecoveryAttempter.h>

#include <VXFoundation/VXAssertion.h>
#include <VXFoundation/VXLocalizedString.h>

namespace {

Ref<VXErrorRecoveryBlock> cancelBlock() {
  static const Ref<VXErrorRecoveryBlock> never =
      RefPtr<VXErrorRecoveryBlock>([](const RefPtr<NSError>&) { return false; });
  return never;
}

}  // namespace

void VXErrorRecoveryAttempter::addRecoveryOptionWithLocalizedTitle(
    Text localizedTitle, const RefPtr<VXErrorRecoveryBlock>& recoveryBlock) {
  const auto require = [this](bool holds, std::size_t line, Text condition) {
    VXAssertParameter(
        holds, *this,
        {"addRecoveryOptionWithLocalizedTitle:recoveryBlock:", "VXErrorRecoveryAttempter", line, condition});
  };
  require(bool(localizedTitle), 45, "localizedTitle != nil");
  require(bool(recoveryBlock), 46, "recoveryBlock != nil");
  titles_->addObject(localizedTitle.get());
  blocks_->addObject(recoveryBlock);  // blocks are fixed: a share in one is as good as a copy
}

void VXErrorRecoveryAttempter::addCancelRecoveryOption() {
  addRecoveryOptionWithLocalizedTitle(VXLocalizedString("Cancel"), cancelBlock());
}

bool VXErrorRecoveryAttempter::attemptRecoveryFromError(const RefPtr<NSError>& error,
                                                        std::size_t optionIndex) {
  const Ref<VXErrorRecoveryBlock> action =
      dynamicCast<VXErrorRecoveryBlock>(blocks_->objectAtIndex(optionIndex));
  return (*action)(error);
}

void VXErrorRecoveryAttempter::attemptRecoveryFromError(const RefPtr<NSError>& error, std::size_t optionIndex,
                                                        const RefPtr<NSDidRecoverBlock>& delegate,
                                                        void* contextInfo) {
  const bool didRecover = attemptRecoveryFromError(error, optionIndex);
  if (delegate) (*delegate)(didRecover, contextInfo);
}
