#pragma once

#include <sqlite3.h>

#include <string>

#include <Security/FileStore/SecFileFolder.h>

/// How SQLite reaches the files of one store. The store file is SQLite's own business, once it is certain
/// that the one that it opened is the private file of that name. The journal is opened and judged here, by
/// its descriptor: a private file, which is played back only if it belongs to this state of this store
/// (secJudgeJournal). SQLite opens nothing else. Registered under a name of its own as long as it exists; it
/// has to outlive the connection.
class SecFileVFS : private sqlite3_vfs {
 public:
  /// For the file `name` in `folder`, which has to outlive it.
  SecFileVFS(const SecFileFolder& folder, std::string name);
  SecFileVFS(const SecFileVFS&) = delete;
  SecFileVFS& operator=(const SecFileVFS&) = delete;
  ~SecFileVFS();

  const char* name() const { return zName; }
  const std::string& path() const { return path_; }
  /// Returns which file is open as the store.
  const SecFileNumber& file() const { return file_; }

 private:
  static SecFileVFS& of(sqlite3_vfs* vfs) { return *static_cast<SecFileVFS*>(vfs); }
  static int open(sqlite3_vfs* vfs, const char* path, sqlite3_file* file, int flags, int* flagsOut);
  static int remove(sqlite3_vfs* vfs, const char* path, int syncFolder);
  static int access(sqlite3_vfs* vfs, const char* path, int flags, int* result);
  static int fullPath(sqlite3_vfs* vfs, const char* path, int size, char* full);

  void openStore(sqlite3_file* file, int flags, int* flagsOut);
  bool openJournal(sqlite3_file* file, int flags);
  SecFileDescriptor createJournal();
  void judge(const SecFileDescriptor& journal);
  SecBytes firstPage() const;

  sqlite3_vfs* system_;
  const SecFileFolder& folder_;
  std::string registeredName_;
  std::string name_;
  std::string path_;
  std::string journal_;
  sqlite3_file* store_ = nullptr;
  SecFileNumber file_;
};
