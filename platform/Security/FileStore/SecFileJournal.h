#pragma once

#include <sqlite3.h>

#include <Security/FileStore/SecFileFolder.h>

/// A rollback journal, opened for SQLite. SQLite owns the memory: an object is made in place by `open` and
/// ends with SQLite's xClose.
class SecFileJournal : public sqlite3_file {
 public:
  /// Makes a journal in `place`, of a size of at least sizeof(SecFileJournal); `isNew` if the folder still
  /// has to be synced for it. `folder` has to outlive it.
  static void open(sqlite3_file* place, SecFileDescriptor file, const SecFileFolder& folder, bool isNew);

 private:
  SecFileJournal(SecFileDescriptor file, const SecFileFolder& folder, bool isNew);

  static const sqlite3_io_methods methods;
  static SecFileJournal& of(sqlite3_file* file) { return *static_cast<SecFileJournal*>(file); }
  static int close(sqlite3_file* file);
  static int read(sqlite3_file* file, void* to, int size, sqlite3_int64 offset);
  static int write(sqlite3_file* file, const void* from, int size, sqlite3_int64 offset);
  static int truncate(sqlite3_file* file, sqlite3_int64 size);
  static int sync(sqlite3_file* file, int flags);
  static int size(sqlite3_file* file, sqlite3_int64* size);
  static int lock(sqlite3_file* file, int level);
  static int isReserved(sqlite3_file* file, int* result);
  static int control(sqlite3_file* file, int operation, void* argument);
  static int sectorSize(sqlite3_file* file);
  static int characteristics(sqlite3_file* file);

  SecFileDescriptor file_;
  const SecFileFolder& folder_;
  bool isNew_;
};
