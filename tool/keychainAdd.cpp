#include "tool/EntrySearch.h"
#include "tool/Failure.h"
#include "tool/KeychainRequest.h"
#include "tool/StandardStreams.h"
#include "tool/Terminal.h"

namespace {

NSRefPtr<NSString> labelOf(const KeychainRequest& request) {
  return request.label ? NSRefPtr<NSString>(stringOfArgument(*request.label)) : nullptr;
}

/// Replaces password and, if there is a new one, label of the entry that is there.
void replace(const KeychainRequest& request, const NSData& password) {
  changeIn(*request.storage, "the entry was not changed"_text, [&](SecTransaction& transaction) {
    auto row = exactMatch(transaction, request.entry.attributes(), SecSecrets::skip);
    if (!row) failWithoutMatch();
    if (request.label) row->entry.attributes.label = textOfArgument(*request.label);
    transaction.replace(row->number, row->entry.attributes, SecSecret(password.bytes()));
  });
}

/// Lets the person at the terminal choose a recovery option; returns whether it recovered from the error.
bool recover(const NSError& error, const KeychainRequest& request, const NSData& password) {
  const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  attempter->addRecoveryOptionWithLocalizedTitle(
      NSString::stringWithUTF8String(libraryText("Replace", "Recovery")),
      [&](const NSRefPtr<NSError>&) { return replace(request, password), true; });
  attempter->addCancelRecoveryOption();
  const NSRef<NSMutableDictionary> userInfo = error.userInfo()->mutableCopy();
  userInfo->setObject(attempter, NSRecoveryAttempterErrorKey);
  userInfo->setObject(attempter->recoveryOptions(), NSLocalizedRecoveryOptionsErrorKey);
  return TerminalPresenter().presentError(NSError::errorWithDomain(error.domain(), error.code(), userInfo));
}

bool isDuplicate(const NSError& error) {
  const auto underlying = NSDynamicCast<NSError>(error.userInfo()->objectForKey(NSUnderlyingErrorKey));
  return underlying && underlying->code() == errSecDuplicateItem;
}

}  // namespace

NSRef<NSData> readPassword() {
  const NSRef<NSData> entered = isOnTerminal() ? askSecret("Password"_text) : readSecretInput();
  if (!NSString::stringWithData(entered, NSUTF8StringEncoding))
    throw Failure("the password is not UTF-8"_text);
  if (isOnTerminal() && !entered->isEqual(askSecret("Repeat the password"_text)))
    throw Failure("the two passwords differ"_text);
  return entered;
}

int addEntry(const KeychainRequest& request) {
  const NSRef<NSData> password = readPassword();
  const auto text = NSString::stringWithData(password, NSUTF8StringEncoding);
  NSRefPtr<NSError> error;
  if (request.entry.makeItem(text, labelOf(request))->addItemToKeychain(&error)) return 0;
  const bool recovered = isOnTerminal() && isDuplicate(*error) && recover(*error, request, *password);
  if (!recovered) throw Failure(explain(*error));
  return 0;
}
