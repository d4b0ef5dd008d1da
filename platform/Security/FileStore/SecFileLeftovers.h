#pragma once

#include <string>
#include <vector>

#include <Security/FileStore/SecFileKeeper.h>
#include <Security/SecFileStorage.h>

/// Judges all key files in the key folder of a place.
std::vector<SecFileKeptKey> secJudgeKeyFiles(const SecFilePlace& place);

/// Erases a key file of that folder by its path or name; fails with errSecParam for a file that is not a key
/// file or that a store needs, and with errSecBusy while a store is being made or protected anew.
void secEraseKeyFile(const SecFilePlace& place, const std::string& path);

/// Do the same for what a keeper has; the second takes the number of a slot.
///@{
std::vector<SecFileKeptKey> secJudgeItems(const SecFilePlace& place, SecFileKeeper& keeper);
void secEraseItem(const SecFilePlace& place, SecFileKeeper& keeper, const std::string& number);
///@}
