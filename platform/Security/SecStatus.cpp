#include <Security/SecStatus.h>

const char* secStatusMessage(OSStatus status) noexcept {
  switch (static_cast<SecStatus>(status)) {
    case errSecSuccess:
      return "No error.";
    case errSecNotBuiltIn:
      return "The desktop's credential service is not built into this library.";
    case errSecDiskFull:
      return "The disk is full; nothing was changed.";
    case errSecIO:
      return "Reading or writing the credential store failed, or a change that was interrupted could not be "
             "undone on a read-only disk; check whether a change was made.";
    case errSecBusy:
      return "The credential store is in use by another program; try again.";
    case errSecParam:
      return "One or more of the values given are not valid.";
    case errSecNotPrivate:
      return "A file or folder of the credential store is a link, or is open to other users.";
    case errSecAllocate:
      return "There is not enough memory.";
    case errSecUserCanceled:
      return "The prompt was dismissed, or could not be shown.";
    case errSecTimedOut:
      return "There was no answer from the desktop's credential service, or to its prompt, in time.";
    case errSecNotAvailable:
      return "The credential store cannot be reached.";
    case errSecReadOnly:
      return "The credential store can be read but not changed.";
    case errSecAuthFailed:
      return "The key file or passphrase does not open the credential store.";
    case errSecNoSuchKeychain:
      return "There is no such credential store, or the desktop has no default collection.";
    case errSecInvalidKeychain:
      return "The file is not a credential store.";
    case errSecDuplicateItem:
      return "The item is already in the credential store.";
    case errSecItemNotFound:
      return "The item is not in the credential store.";
    case errSecDataTooLarge:
      return "The value is too large for the credential store.";
    case errSecInteractionNotAllowed:
      return "The credential store is locked.";
    case errSecWrongSecVersion:
      return "The credential store was written by a newer version.";
    case errSecNoService:
      return "No program on the session bus offers a credential service.";
    case errSecInteractionRequired:
      return "The credential store needs to ask the user, which is not allowed here.";
    case errSecDataNotAvailable:
      return "The key file of the credential store is missing.";
    case errSecRolledBack:
      return "The credential store went back to a former state; accept it if that was intended.";
    case errSecForeignJournal:
      return "The journal next to the credential store does not belong to it; both were left as they are.";
    case errSecDecode:
      return "The credential store is damaged or gave a malformed reply; it was left as it is.";
    case errSecNoSessionBus:
      return "There is no session bus, on which the desktop's credential service could be reached.";
    case errSecServiceReplaced:
      return "The desktop's credential service has ended or was replaced by another.";
    case errSecNoAlgorithm:
      return "The desktop's credential service offers no encryption for secrets on the bus.";
  }
  return "The credential store returned a status that has no message.";
}
