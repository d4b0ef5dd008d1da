#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include <Security/FileStore/SecFileBytes.h>
#include <Security/SecSecret.h>

// The files and folders of a store on the disk. What is a link, is not ours, or is open to other users
// fails with errSecNotPrivate; nothing is ever made private after the fact.

/// Which file it is, whatever its name.
struct SecFileNumber {
  dev_t device = 0;
  ino_t inode = 0;
  friend bool operator==(const SecFileNumber&, const SecFileNumber&) = default;
};

/// Tells which file `path` is, absent when there is none.
std::optional<SecFileNumber> secJudgeFile(const std::string& path);

/// Makes a folder that only this user can enter, and what is missing above it.
void secMakePrivateFolder(const std::string& path);

/// Makes sure of a private folder, which may be behind a link; false when there is none.
bool secJudgeFolder(const std::string& path);

/// The path of a folder without links, absent when there is no such folder.
std::optional<std::string> secResolveFolder(const std::string& path);

/// Writes a new private file so that it is either there as a whole, and will be after a crash, or not there.
/// False, and nothing changed, when something of that name is there.
bool secPublishFile(const std::string& path, SecView content);

/// Reads a small private file, absent when there is none. What is longer than `limit` is cut there.
std::optional<SecSecret> secReadPrivateFile(const std::string& path, std::size_t limit);

/// Removes a file if it is there.
void secRemoveFile(const std::string& path);
