#include <Security/FileStore/SecFileStatement.h>

#include <cerrno>

namespace {

OSStatus statusOfInputOutput(int code, int systemError) {
  if (code == SQLITE_IOERR_NOMEM) return errSecAllocate;
  const bool noRoom = systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
  return noRoom ? errSecDiskFull : errSecIO;
}

/// SQLite takes what could not be read for corrupt; the disk may give it the next time.
OSStatus statusOfCorruption(int systemError) {
  const bool unread = systemError == EIO || systemError == ENXIO || systemError == ERANGE;
  return unread ? errSecIO : errSecDecode;
}

OSStatus statusOf(int code, int systemError) {
  switch (code & 0xFF) {
    case SQLITE_NOMEM:
      return errSecAllocate;
    case SQLITE_FULL:
      return errSecDiskFull;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return errSecBusy;
    case SQLITE_READONLY:
      // While a change is half undone, the store cannot even be read.
      return code == SQLITE_READONLY_ROLLBACK ? errSecIO : errSecReadOnly;
    case SQLITE_TOOBIG:
      return errSecDataTooLarge;
    case SQLITE_CANTOPEN:
      return code == SQLITE_CANTOPEN_SYMLINK ? errSecNotPrivate : statusOfInputOutput(code, systemError);
    case SQLITE_CORRUPT:
      return statusOfCorruption(systemError);
    case SQLITE_ERROR:
    case SQLITE_NOTADB:
    case SQLITE_CONSTRAINT:
    case SQLITE_SCHEMA:
      return errSecDecode;  // the tables are not what they were made as
    default:
      return statusOfInputOutput(code, systemError);
  }
}

}  // namespace

void secCheckSQLite(int code) {
  if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE) return;
  throw SecFailure{statusOf(code, errno)};
}

SecFileStatement::~SecFileStatement() {
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

SecFileStatement& SecFileStatement::bind(std::int64_t value) {
  secCheckSQLite(sqlite3_bind_int64(statement_, ++bound_, value));
  return *this;
}

SecFileStatement& SecFileStatement::bind(SecView bytes) {
  // A null pointer would bind no value, which is another thing than an empty one.
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
