#pragma once

#include <cstdint>

#include <Foundation/NSExport.h>

/// The result of a credential store operation: a SecStatus, or another number that a host's storage returns.
using OSStatus = std::int32_t;

/// The statuses of the credential store. Zero is success; the numbers are the customary ones.
/// secStatusMessage returns a message for each.
enum SecStatus : OSStatus {
  errSecSuccess = 0,                     ///< the operation succeeded
  errSecNotBuiltIn = -4,                 ///< this build has no desktop store
  errSecDiskFull = -34,                  ///< nothing was changed
  errSecIO = -36,                        ///< reading or writing failed; a change may have been made
  errSecBusy = -47,                      ///< another process holds the store for longer than a change takes
  errSecParam = -50,                     ///< an argument is not valid
  errSecNotPrivate = -54,                ///< a file or folder of the store is a link, or open to others
  errSecAllocate = -108,                 ///< there is not enough memory
  errSecUserCanceled = -128,             ///< a prompt was dismissed, or could not be shown
  errSecTimedOut = -1712,                ///< no reply, or no answer to a prompt, within the limit
  errSecNotAvailable = -25291,           ///< the store cannot be reached
  errSecReadOnly = -25292,               ///< it can be read but not changed
  errSecAuthFailed = -25293,             ///< the wrong key file or passphrase; nothing is damaged
  errSecNoSuchKeychain = -25294,         ///< there is no such store, or no default collection
  errSecInvalidKeychain = -25295,        ///< the file is not a store
  errSecDuplicateItem = -25299,          ///< there is an entry of the same identity
  errSecItemNotFound = -25300,           ///< no entry matches
  errSecDataTooLarge = -25302,           ///< a secret or a string is larger than a store accepts
  errSecInteractionNotAllowed = -25308,  ///< the store is locked
  errSecWrongSecVersion = -25310,        ///< a newer version has written the store
  errSecNoService = -25312,              ///< no program on the session bus keeps credentials
  errSecInteractionRequired = -25315,    ///< a prompt is needed, and prompts are not allowed
  errSecDataNotAvailable = -25316,       ///< the key file is missing
  errSecRolledBack = -25391,             ///< the store went back to a former state, which nobody has accepted
  errSecForeignJournal = -25392,         ///< there is a journal of another store, or of another state of it
  errSecDecode = -26275,                 ///< the stored data is damaged, or a reply malformed
  errSecNoSessionBus = -67585,           ///< there is no session bus
  errSecServiceReplaced = -67587,        ///< the service that was in use has ended or was replaced
  errSecNoAlgorithm = -67747,            ///< the service offers no encryption that both sides know
};

/// Returns the English message of `status`: always the same one, never null. There is a separate message for
/// numbers that are not in SecStatus. Safe from any thread.
NS_EXPORT const char* secStatusMessage(OSStatus status) noexcept;
