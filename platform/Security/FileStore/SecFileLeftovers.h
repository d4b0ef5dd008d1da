#pragma once

#include <string>
#include <vector>

#include <Security/SecFileStorage.h>

/// Judges all key files in the key folder of a place.
std::vector<SecFileKeptKey> secJudgeKeyFiles(const SecFilePlace& place);

/// Erases a key file of that folder by its path or name; fails with errSecParam for a file that is not a key
/// file or that a store needs, and with errSecBusy while a store is being made or protected anew.
void secEraseKeyFile(const SecFilePlace& place, const std::string& path);
