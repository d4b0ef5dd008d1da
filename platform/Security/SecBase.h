#pragma once

#include <cstdint>

using OSStatus = std::int32_t;

/// The answers of the credential store. Zero is success; the numbers are the field's usual ones.
/// secStatusMessage (SecStatus.h) has a text for each.
enum SecStatus : OSStatus {
  errSecSuccess = 0,
  errSecDiskFull = -34,
  errSecIO = -36,
  errSecBusy = -47,  // another process holds the store for longer than a change takes
  errSecParam = -50,
  errSecNotPrivate = -54,  // a file or folder of the store is a link, or open to others
  errSecAllocate = -108,
  errSecUserCanceled = -128,  // a prompt of the desktop's service was dismissed
  errSecNotAvailable = -25291,
  errSecReadOnly = -25292,
  errSecAuthFailed = -25293,  // the wrong key file or passphrase; nothing is damaged
  errSecNoSuchKeychain = -25294,
  errSecInvalidKeychain = -25295,  // the file is something else than a store
  errSecDuplicateItem = -25299,
  errSecItemNotFound = -25300,
  errSecDataTooLarge = -25302,
  errSecInteractionNotAllowed = -25308,  // the store is locked
  errSecWrongSecVersion = -25310,        // a newer version has written the store
  errSecDataNotAvailable = -25316,       // the key file is missing
  errSecDecode = -26275,                 // what is kept is damaged
};
