#pragma once

#include <sqlite3.h>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <Security/FileStore/SecFileStatement.h>

/// A connection to a store file, with every setting that a store wants. Errors of SQLite are thrown as
/// SecFailure. Of one thread at a time, and of the process that opened it.
class SecFileDatabase {
 public:
  /// Opens a file that is there, without following links, and makes sure by its first bytes that it is a
  /// store of this format; fails with errSecInvalidKeychain, errSecDecode or errSecWrongSecVersion. Nothing
  /// is written.
  SecFileDatabase(const std::string& path, std::chrono::milliseconds waitLimit);
  /// Makes an empty store in memory.
  SecFileDatabase();
  SecFileDatabase(const SecFileDatabase&) = delete;
  SecFileDatabase& operator=(const SecFileDatabase&) = delete;

  /// How long to wait for the lock of another connection before errSecBusy.
  void setWaitLimit(std::chrono::milliseconds limit) { waitLimit_ = limit; }
  /// Gives the statement of `sql`, a text that lives as long as the program.
  SecFileStatement use(const char* sql);
  void run(const char* sql) { use(sql).run(); }
  /// The statement that gives the one row of the store: its id, its slot and its seal.
  SecFileStatement storeRow();
  /// Rows that the last statement changed.
  int changes() const { return sqlite3_changes(connection_.get()); }
  bool inTransaction() const { return sqlite3_get_autocommit(connection_.get()) == 0; }
  /// Begins a transaction, which has its lock from the start.
  void beginReading();
  void beginWriting();
  /// Fails with errSecDiskFull unless the disk has room for `size` more bytes and for what a later removal
  /// takes: its journal needs room, and on a disk that was filled to the end nothing could be removed.
  void requireRoom(std::size_t size);
  /// Fails with errSecDecode unless the tables are those of a store, and nothing else is there. Called within
  /// a transaction; a file that nobody has changed since is not asked again.
  void checkSchema();
  /// All pages as one file.
  SecBytes image() const;

 private:
  struct Close {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  void open(const char* path, int flags);
  void configure();
  void checkMode(const std::string& path);
  void checkHeader();
  static int wait(void* database, int tries);
  /// Another number once anybody has changed the file.
  unsigned dataVersion();

  std::unique_ptr<sqlite3, Close> connection_;
  std::map<const char*, std::unique_ptr<sqlite3_stmt, Close>> statements_;
  bool writes_ = false;
  std::optional<unsigned> checkedVersion_;
  std::chrono::milliseconds waitLimit_{5000};
  std::chrono::steady_clock::time_point waitingSince_;
};

/// One transaction of a database: rolled back at the end unless it was committed.
class SecFileUnitOfWork {
 public:
  SecFileUnitOfWork(SecFileDatabase& database, bool writing);
  SecFileUnitOfWork(const SecFileUnitOfWork&) = delete;
  SecFileUnitOfWork& operator=(const SecFileUnitOfWork&) = delete;
  ~SecFileUnitOfWork();
  void commit() { database_.run("COMMIT"); }

 private:
  explicit SecFileUnitOfWork(SecFileDatabase& database) : database_(database) {}

  SecFileDatabase& database_;
};
