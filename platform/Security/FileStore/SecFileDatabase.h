#pragma once

#include <sqlite3.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <Security/FileStore/SecFileStatement.h>
#include <Security/FileStore/SecFileVFS.h>

/// A connection to a store file, with every setting that a store needs. Results of SQLite other than success
/// are thrown as SecFailure. Used by one thread at a time, and by the process that opened it.
class SecFileDatabase {
 public:
  /// Opens the existing file `name` in `folder` and checks by its first bytes that it is a store of a known
  /// format; fails with errSecInvalidKeychain, errSecDecode or errSecWrongSecVersion. Nothing is written.
  SecFileDatabase(const SecFileFolder& folder, const std::string& name, std::chrono::milliseconds waitLimit);
  /// Makes an empty database of this format in memory.
  SecFileDatabase();
  SecFileDatabase(const SecFileDatabase&) = delete;
  SecFileDatabase& operator=(const SecFileDatabase&) = delete;

  /// Sets how long to wait for the lock of another connection before errSecBusy; returns the former limit.
  std::chrono::milliseconds setWaitLimit(std::chrono::milliseconds limit) {
    return std::exchange(waitLimit_, limit);
  }
  /// Returns which file was opened.
  const SecFileNumber& fileNumber() const { return vfs_->file(); }
  /// Returns the statement of `sql`, a string that lives as long as the program.
  SecFileStatement use(const char* sql);
  void run(const char* sql) { use(sql).run(); }
  /// Runs statements that are used once.
  void runOnce(const std::string& sql);
  /// Returns how many rows the last statement changed.
  int changes() const { return sqlite3_changes(connection_.get()); }
  bool inTransaction() const { return sqlite3_get_autocommit(connection_.get()) == 0; }

  /// Begins a transaction, which has its lock from the start, and reads the format. Writing begins with page
  /// 1, as secJudgeJournal requires.
  ///@{
  void beginReading();
  void beginWriting();
  ///@}
  /// Returns the file's format, as of the last begin or of the opening.
  std::uint32_t format() const { return format_; }
  void setFormat(std::uint32_t format);
  /// Returns a number that changes with every change of the file by anybody. Called within a transaction.
  unsigned dataVersion();
  /// Returns a count of pages: of the file, and of those in it that are not used.
  ///@{
  std::size_t pages() { return count("PRAGMA page_count"); }
  std::size_t unusedPages() { return count("PRAGMA freelist_count"); }
  ///@}
  /// Fails with errSecDiskFull unless the disk has room for `size` more bytes and for a later removal: its
  /// journal needs room, and from a disk that is full to the end nothing could be removed.
  void requireRoom(std::size_t size);
  /// Writes the file anew without unused pages. Called outside a transaction.
  void compact() { run("VACUUM"); }
  /// Returns all pages of a database in memory.
  SecBytes image() const;
  /// Returns the file as it is, within a transaction that has not changed it yet.
  SecBytes fileContent();

 private:
  struct Close {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  void open(const char* path, int flags, const char* vfs);
  sqlite3_file& file();
  void configure();
  void checkMode();
  void checkHeader();
  void takeFormat(std::uint32_t format);
  std::size_t count(const char* pragma);
  static int wait(void* database, int tries);

  const SecFileFolder* folder_ = nullptr;
  std::unique_ptr<SecFileVFS> vfs_;
  std::unique_ptr<sqlite3, Close> connection_;
  std::map<const char*, std::unique_ptr<sqlite3_stmt, Close>> statements_;
  bool writes_ = false;
  std::uint32_t format_ = 0;
  std::chrono::milliseconds waitLimit_{5000};
  std::chrono::steady_clock::time_point waitingSince_;
};

/// One transaction of a database: rolled back at its end unless it was committed.
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
