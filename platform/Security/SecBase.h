#pragma once

#include <cstdint>

using OSStatus = std::int32_t;

/// The answers of the credential store. Zero is success; the numbers are the field's usual ones.
enum : OSStatus {
  errSecSuccess = 0,
  errSecDiskFull = -34,
  errSecIO = -36,
  errSecParam = -50,
  errSecAllocate = -108,
  errSecNotAvailable = -25291,
  errSecReadOnly = -25292,
  errSecAuthFailed = -25293,
  errSecNoSuchKeychain = -25294,
  errSecDuplicateItem = -25299,
  errSecItemNotFound = -25300,
  errSecDataTooLarge = -25302,
  errSecInteractionNotAllowed = -25308,
  errSecDecode = -26275,
};
