#pragma once

#include <sys/types.h>

#include <compare>
#include <string>
#include <vector>

#include <CoreServices/Internal/UTMIMEDatabase.h>

/// The state of a file, by which a change of it is noticed; all zeros where there is none.
struct UTFileState {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t modified = 0;  ///< nanoseconds
  friend bool operator==(const UTFileState&, const UTFileState&) = default;
};

/// The folders of the user's and the system's shared MIME databases, the most important one first: "mime" in
/// $XDG_DATA_HOME, otherwise ~/.local/share, and in those of $XDG_DATA_DIRS, otherwise /usr/local/share and
/// /usr/share. Paths that are not absolute are skipped, and so is the environment of a privileged
/// program.
std::vector<std::string> UTMIMEFolders();

/// Returns the states of all files of the databases in the folders.
std::vector<UTFileState> UTMIMEFileStates(const std::vector<std::string>& folders);

/// Reads the databases. Only plain files count, or links to them, of at most 1 MiB each and 8 MiB together;
/// any other one, and one that cannot be read, counts as missing.
std::vector<UTMIMEContents> UTReadMIMEFiles(const std::vector<std::string>& folders);
