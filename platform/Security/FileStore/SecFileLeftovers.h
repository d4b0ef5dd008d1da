#pragma once

#include <string>
#include <vector>

#include <Security/FileStore/SecFileSite.h>

/// What is known of a key file.
enum class SecFileKeyUse {
  used,      ///< a store names it, or may do so
  leftover,  ///< the store that it was made for can be reached, and does not name it
  unknown,   ///< its store cannot be reached, or the file does not say which store that is
};

struct SecFileKeyFinding {
  std::string name;
  std::string store;  ///< the path that it was made for; empty if the file does not say
  SecFileKeyUse use = SecFileKeyUse::unknown;
};

/// Judges one key file, or all that there are in a folder.
///@{
SecFileKeyFinding secJudgeKeyFile(const SecFileFolder& keyFolder, const std::string& name);
std::vector<SecFileKeyFinding> secJudgeKeyFiles(const SecFileFolder& keyFolder);
///@}

/// Erases a key file; fails with errSecParam for a file that is not a key file or that a store names, and
/// with errSecBusy while a store is being made or protected anew.
void secEraseKeyFile(const SecFileFolder& keyFolder, const std::string& name);
