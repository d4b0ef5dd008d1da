#include "examples/window/Errors.h"

#include <QMessageBox>
#include <QPushButton>
#include <optional>

#include "examples/window/Localised.h"

namespace {

class Dialog final : public NSErrorPresenter {
 public:
  explicit Dialog(QWidget* parent) : parent_(parent) {}

 protected:
  std::optional<std::size_t> choose(const NSError& error, const NSArray& localizedOptions) override {
    QMessageBox box(QMessageBox::Warning, localised("Passwords"), VXQt::qString(error.localizedDescription()),
                    QMessageBox::NoButton, parent_);
    if (const auto explanation = VXKeychainErrorExplanation(NSRefPtr(const_cast<NSError*>(&error))))
      box.setInformativeText(VXQt::qString(explanation->whatHappened) + "\n" +
                             VXQt::qString(explanation->whatToDo));
    std::vector<QAbstractButton*> buttons;
    for (const NSRef<NSObject> each : localizedOptions) {
      const bool isLast = buttons.size() + 1 == localizedOptions.count();  // which is "Cancel"
      buttons.push_back(box.addButton(VXQt::qString(each->description()),
                                      isLast ? QMessageBox::RejectRole : QMessageBox::AcceptRole));
    }
    box.setEscapeButton(buttons.back());
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
    box.exec();
    const auto chosen = std::find(buttons.begin(), buttons.end(), box.clickedButton());
    if (chosen == buttons.end()) return {};
    return static_cast<std::size_t>(chosen - buttons.begin());
  }

 private:
  QWidget* const parent_;
};

}  // namespace

NSRefPtr<NSError> errorOf(OSStatus status) {
  if (status == errSecSuccess) return nullptr;
  return NSError::errorWithDomain(
      NSOSStatusErrorDomain, status,
      NSDictionary::dictionaryWithObject(SecCopyErrorMessageString(status), NSLocalizedDescriptionKey));
}

OSStatus statusOf(const NSError& error) {
  const auto underlying = NSDynamicCast<NSError>(error.userInfo()->objectForKey(NSUnderlyingErrorKey));
  return static_cast<OSStatus>(underlying ? underlying->code() : error.code());
}

bool presentError(QWidget* parent, const NSRef<NSError>& error, const std::vector<Recovery>& recoveries) {
  const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  for (const Recovery& recovery : recoveries) {
    const NSRef<NSString> english = NSString::stringWithString(recovery.title);
    attempter->addRecoveryOptionWithLocalizedTitle(
        titleOf(english), [action = recovery.action](const NSRefPtr<NSError>&) { return action(), true; });
  }
  attempter->addCancelRecoveryOption();
  const NSRef<NSMutableDictionary> userInfo = error->userInfo()->mutableCopy();
  userInfo->setObject(attempter, NSRecoveryAttempterErrorKey);
  userInfo->setObject(attempter->recoveryOptions(), NSLocalizedRecoveryOptionsErrorKey);
  return Dialog(parent).presentError(NSError::errorWithDomain(error->domain(), error->code(), userInfo));
}
