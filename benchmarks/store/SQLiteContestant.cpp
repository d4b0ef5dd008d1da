#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

#include "Contestant.h"

namespace {

struct Close {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// One plain table with durable changes and nothing else: no encryption, no seal, no checks.
class SQLiteAlone final : public Contestant {
 public:
  SQLiteAlone(const std::string& folder, bool openedPerCall) : openedPerCall_(openedPerCall) {
    path_ = folder + "/store-benchmark.sqlite";
    ::unlink(path_.c_str());
    open();
    run("CREATE TABLE entry(account INTEGER PRIMARY KEY,password BLOB NOT NULL)");
  }
  ~SQLiteAlone() override { ::unlink(path_.c_str()); }

  std::string name() const override {
    return openedPerCall_ ? "SQLite alone, per call" : "SQLite alone, kept open";
  }

  void fill(std::size_t count) override {
    run("BEGIN");
    for (std::size_t account = 0; account < count; ++account) run(insertion, account);
    run("COMMIT");
  }
  void add(std::size_t account) override { change(insertion, account); }
  void update(std::size_t account) override {
    change("UPDATE entry SET password=randomblob(160) WHERE account=?", account);
  }
  void remove(std::size_t account) override { change("DELETE FROM entry WHERE account=?", account); }
  bool look(std::size_t account) override {
    if (openedPerCall_) open();
    return run("SELECT password FROM entry WHERE account=?", account) == SQLITE_ROW;
  }

 private:
  static constexpr const char* insertion = "INSERT INTO entry VALUES(?,randomblob(160))";

  void open() {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open(path_.c_str(), &opened);
    database_.reset(opened);
    if (code != SQLITE_OK) throw std::runtime_error("SQLite cannot open its file");
    run("PRAGMA synchronous=EXTRA");
    run("PRAGMA secure_delete=ON");
  }

  int run(const char* sql, std::size_t account = 0) {
    sqlite3_stmt* made = nullptr;
    sqlite3_prepare_v2(database_.get(), sql, -1, &made, nullptr);
    const std::unique_ptr<sqlite3_stmt, Close> statement(made);
    sqlite3_bind_int64(made, 1, static_cast<sqlite3_int64>(account));
    const int code = sqlite3_step(made);
    if (code != SQLITE_ROW && code != SQLITE_DONE) throw std::runtime_error("SQLite failed");
    return code;
  }

  void change(const char* sql, std::size_t account) {
    if (openedPerCall_) open();
    run("BEGIN IMMEDIATE");
    run(sql, account);
    run("COMMIT");
  }

  bool openedPerCall_;
  std::string path_;
  std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace

std::unique_ptr<Contestant> makeSQLiteAlone(const std::string& folder, bool openedPerCall) {
  return std::make_unique<SQLiteAlone>(folder, openedPerCall);
}
