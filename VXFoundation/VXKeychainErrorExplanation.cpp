#include <VXFoundation/VXKeychainErrorExplanation.h>

#include <Security/SecStatus.h>
#include <VXFoundation/Internal/VXLocalizedString.h>

namespace {

struct Sentences {
  NSStringArg whatHappened;
  NSStringArg whatToDo;
};

std::optional<Sentences> sentencesFor(std::int64_t status) {
  switch (status) {
    case errSecInteractionNotAllowed:
    case errSecInteractionRequired:
      return Sentences{"Your keychain is locked.", "Unlock it, then try again."};
    case errSecBusy:
      return Sentences{"Another program is using your keychain.", "Try again in a moment."};
    case errSecReadOnly:
      return Sentences{"Your keychain can be read but not changed.",
                       "Make sure that you may write to its file and folder, then try again."};
    case errSecNoService:
    case errSecNoSessionBus:
      return Sentences{"No program that keeps passwords is running on this desktop.",
                       "Start your desktop’s password service, or use a keychain in a file."};
    case errSecDecode:
      return Sentences{"Your keychain is damaged; it was left as it is.",
                       "Restore it from a backup, or rescue the items that can still be read."};
    case errSecRolledBack:
      return Sentences{
          "Your keychain was put back to an earlier state.",
          "Accept that state if you restored a backup; otherwise find out who replaced the file."};
    case errSecUserCanceled:
      return Sentences{"The prompt was dismissed.", "Try again, and answer the prompt."};
    case errSecDiskFull:
      return Sentences{"The disk is full; nothing was changed.", "Free some space, then try again."};
    case errSecDuplicateItem:
      return Sentences{"Your keychain already has an item for this account and place.",
                       "Replace that item, or choose another account, service or server."};
    default:
      return {};
  }
}

/// Returns the status of the error itself or of the one underneath it, and success if neither has one.
std::int64_t statusOf(const NSRefPtr<NSError>& error) {
  if (!error) return errSecSuccess;
  if (error->domain()->isEqual(NSOSStatusErrorDomain)) return error->code();
  return statusOf(NSDynamicCast<NSError>(error->userInfo()->objectForKey(NSUnderlyingErrorKey)));
}

NSRef<NSString> localized(NSStringArg sentence) {
  const NSRefPtr<NSString> translation = VXLocalizedString(sentence, "Recovery");
  return translation ? translation : sentence.get();
}

}  // namespace

std::optional<VXErrorExplanation> VXKeychainErrorExplanation(const NSRefPtr<NSError>& error) {
  const std::optional<Sentences> sentences = sentencesFor(statusOf(error));
  if (!sentences) return {};
  return VXErrorExplanation{localized(sentences->whatHappened), localized(sentences->whatToDo)};
}
