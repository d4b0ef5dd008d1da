#include <Security/FileStore/SecFileStatement.h>

#include <cerrno>

SecFileStatement::~SecFileStatement() {
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

SecFileStatement& SecFileStatement::bind(std::int64_t value) {
  secCheckSQLite(sqlite3_bind_int64(statement_, ++bound_, value));
  return *this;
}

SecFileStatement& SecFileStatement::bind(SecView bytes) {
  // A null pointer would bind NULL, which is not an empty value.
  const void* const start = bytes.empty() ? static_cast<const void*>("") : bytes.data();
  secCheckSQLite(sqlite3_bind_blob64(statement_, ++bound_, start, bytes.size(), SQLITE_STATIC));
  return *this;
}

bool SecFileStatement::step() {
  errno = 0;
  const int code = sqlite3_step(statement_);
  secCheckSQLite(code);
  return code == SQLITE_ROW;
}

std::string_view SecFileStatement::text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  return text ? std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)))
              : std::string_view();
}

SecView SecFileStatement::blob(int column) const {
  const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(statement_, column));
  if (bytes) return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
  const int code = sqlite3_errcode(sqlite3_db_handle(statement_));
  if (code == SQLITE_NOMEM) throw SecFailure{errSecAllocate};
  return {};
}
