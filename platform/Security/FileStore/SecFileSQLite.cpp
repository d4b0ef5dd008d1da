#include <Security/FileStore/SecFileSQLite.h>

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace {

/// The statuses that a result can carry, as extended codes beyond SQLite's own.
constexpr OSStatus carried[] = {errSecNotPrivate, errSecForeignJournal, errSecDiskFull, errSecIO,
                                errSecAllocate,   errSecNotAvailable,   errSecReadOnly, errSecNoSuchKeychain};
constexpr int firstExtension = 100;

OSStatus statusOfInputOutput(int code, int systemError) {
  if (code == SQLITE_IOERR_NOMEM) return errSecAllocate;
  const bool noRoom = systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
  return noRoom ? errSecDiskFull : errSecIO;
}

OSStatus statusOfOpening(int code, int systemError) {
  const int index = (code >> 8) - firstExtension;
  if (0 <= index && index < std::ssize(carried)) return carried[index];
  return statusOfInputOutput(code, systemError);
}

/// SQLite reports as corrupt what could not be read; the disk may return it the next time.
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
      // With a journal that cannot be played back, the store cannot even be read.
      return code == SQLITE_READONLY_ROLLBACK ? errSecIO : errSecReadOnly;
    case SQLITE_TOOBIG:
      return errSecDataTooLarge;
    case SQLITE_CANTOPEN:
      return statusOfOpening(code, systemError);
    case SQLITE_CORRUPT:
      return statusOfCorruption(systemError);
    case SQLITE_ERROR:
    case SQLITE_NOTADB:
    case SQLITE_CONSTRAINT:
    case SQLITE_SCHEMA:
      return errSecDecode;  // the tables are not those of a store
    default:
      return statusOfInputOutput(code, systemError);
  }
}

}  // namespace

void secCheckSQLite(int code) {
  if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE) return;
  throw SecFailure{statusOf(code, errno)};
}

int secSQLiteCodeOf(OSStatus status) {
  const auto place = std::find(std::begin(carried), std::end(carried), status);
  if (place == std::end(carried)) return SQLITE_CANTOPEN;
  return SQLITE_CANTOPEN | (firstExtension + static_cast<int>(place - std::begin(carried))) << 8;
}
