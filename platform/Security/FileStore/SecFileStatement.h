#pragma once

#include <sqlite3.h>

#include <Security/FileStore/SecFileBytes.h>

/// Throws the status that stands for a result of SQLite, SecFailure, unless it is a success. To be called at
/// once: some of what went wrong is only in errno.
void secCheckSQLite(int code);

/// A statement in use: values are bound in order, and it is free again when this goes.
class SecFileStatement {
 public:
  explicit SecFileStatement(sqlite3_stmt* statement) : statement_(statement) {}
  SecFileStatement(const SecFileStatement&) = delete;
  SecFileStatement& operator=(const SecFileStatement&) = delete;
  ~SecFileStatement();

  SecFileStatement& bind(std::int64_t value);
  SecFileStatement& bind(SecView bytes);
  /// Whether there is a further row.
  bool step();
  /// Goes to a row that must be there; fails with errSecDecode when it is not.
  void requireRow() { secRequire(step(), errSecDecode); }
  void run() { static_cast<void>(step()); }

  std::int64_t integer(int column) const { return sqlite3_column_int64(statement_, column); }
  /// Valid until the next step, as is a blob.
  std::string_view text(int column) const;
  SecView blob(int column) const;

 private:
  sqlite3_stmt* statement_;
  int bound_ = 0;
};
