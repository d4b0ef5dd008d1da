#pragma once

#include <cstdint>

#include <Foundation/NSExport.h>

/// What an operation of the credential store answers: a SecStatus, or what a host's own storage answers.
using OSStatus = std::int32_t;

/// The answers of the credential store. Zero is success; the numbers are the field's usual ones.
/// secStatusMessage has a text for each.
enum SecStatus : OSStatus {
  errSecSuccess = 0,                     ///< it was done
  errSecDiskFull = -34,                  ///< nothing was changed
  errSecIO = -36,                        ///< the files cannot be read or written
  errSecBusy = -47,                      ///< another process holds the store for longer than a change takes
  errSecParam = -50,                     ///< what was given is not valid
  errSecNotPrivate = -54,                ///< a file or folder of the store is a link, or open to others
  errSecAllocate = -108,                 ///< there is not enough memory
  errSecUserCanceled = -128,             ///< a prompt of the desktop's service was dismissed
  errSecNotAvailable = -25291,           ///< the store cannot be reached
  errSecReadOnly = -25292,               ///< it can be read but not changed
  errSecAuthFailed = -25293,             ///< the wrong key file or passphrase; nothing is damaged
  errSecNoSuchKeychain = -25294,         ///< there is no such store
  errSecInvalidKeychain = -25295,        ///< the file is something else than a store
  errSecDuplicateItem = -25299,          ///< there is an entry of the same identity
  errSecItemNotFound = -25300,           ///< no entry matches
  errSecDataTooLarge = -25302,           ///< a secret or text is above what a store takes
  errSecInteractionNotAllowed = -25308,  ///< the store is locked
  errSecWrongSecVersion = -25310,        ///< a newer version has written the store
  errSecDataNotAvailable = -25316,       ///< the key file is missing
  errSecDecode = -26275,                 ///< what is kept is damaged
};

/// Gives the English message of `status`, the same one always and never null; a number that is not one of
/// SecStatus gets a text of its own. Safe from any thread.
NS_EXPORT const char* secStatusMessage(OSStatus status) noexcept;
