#pragma once

#include <optional>
#include <string>

#include <Security/FileStore/SecFileWalk.h>
#include <Security/SecFilePlace.h>

/// Where the files of a store are: the place that the host named, without symbolic links.
struct SecFileSite {
  std::string folder;
  std::string name;
  std::string keyFolder;
  std::string credentialFolder;
  SecFolderRule rule = SecFolderRule::others;

  /// Opens the folder of the store; fails with errSecNoSuchKeychain if it is missing.
  SecFileFolder openFolder() const;
  /// Opens the folder of the keys; no value if it is missing.
  std::optional<SecFileFolder> openKeyFolder() const { return secOpenFolder(keyFolder, SecFolderRule::own); }
  SecFileFolder makeKeyFolder() const { return secMakeFolder(keyFolder, SecFolderRule::own); }
};

/// A site, and its folder as it was found.
struct SecFileOpenSite {
  SecFileSite site;
  SecFileFolder folder;
};

/// Finds the site of a place. If `makes` and the folder of the store is the store's own, a missing folder is
/// made. Fails with errSecNoSuchKeychain if the folder is missing, with errSecNotPrivate if it may be changed
/// by others, and with errSecParam for a name that is empty or too long.
SecFileOpenSite secFindSite(const SecFilePlace& place, bool makes);
