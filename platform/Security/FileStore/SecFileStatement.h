#pragma once

#include <sqlite3.h>

#include <Security/FileStore/SecFileBytes.h>
#include <Security/FileStore/SecFileSQLite.h>

/// A statement in use: values are bound in order, and it is free for another use when this is destroyed.
class SecFileStatement {
 public:
  explicit SecFileStatement(sqlite3_stmt* statement) : statement_(statement) {}
  SecFileStatement(const SecFileStatement&) = delete;
  SecFileStatement& operator=(const SecFileStatement&) = delete;
  ~SecFileStatement();

  SecFileStatement& bind(std::int64_t value);
  SecFileStatement& bind(SecView bytes);
  /// Returns whether there is a further row.
  bool step();
  /// Goes to the next row; fails with errSecDecode if there is none.
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
