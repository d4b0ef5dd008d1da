#pragma once

#include <string>

#include <Security/FileStore/SecFileKeys.h>

/// The path of a store's key file in `keyFolder`.
std::string secKeyFilePath(const std::string& keyFolder, const SecStoreID& store);
/// Reads the key file: errSecDataNotAvailable when it is missing, errSecAuthFailed when it is none.
SecSecret secReadKeyFile(const std::string& keyFolder, const SecStoreID& store);
/// Makes a new key and its file, in place of one that is there.
SecSecret secMakeKeyFile(const std::string& keyFolder, const SecStoreID& store);
