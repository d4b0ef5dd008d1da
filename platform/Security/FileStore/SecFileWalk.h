#pragma once

#include <optional>
#include <string>

#include <Security/FileStore/SecFileFolder.h>

/// What is required of a folder before files in it are trusted.
enum class SecFolderRule {
  own,     ///< only this user may enter it, and nobody but this user and the system may change a folder above
  others,  ///< nobody else may change it
  any,
};

/// Opens a folder, component by component, and judges what it meets on the way, the folders that contain
/// symbolic links included. A relative path starts at the current folder. Returns no value if there is no
/// such folder; fails with errSecNotPrivate if one breaks the rule.
std::optional<SecFileFolder> secOpenFolder(const std::string& path, SecFolderRule rule);

/// Does the same, and makes the folders that are missing, with mode 0700.
SecFileFolder secMakeFolder(const std::string& path, SecFolderRule rule);
