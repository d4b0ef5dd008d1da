#include <Security/FileStore/SecFileJournal.h>

#include <cerrno>
#include <cstring>
#include <new>

namespace {

int codeOf(int otherwise) {
  const bool noRoom = errno == ENOSPC || errno == EDQUOT;
  return noRoom ? SQLITE_FULL : otherwise;
}

ssize_t again(auto transfer) {
  ssize_t count;
  do count = transfer();
  while (count < 0 && errno == EINTR);
  return count;
}

}  // namespace

const sqlite3_io_methods SecFileJournal::methods = {
    .iVersion = 1,
    .xClose = close,
    .xRead = read,
    .xWrite = write,
    .xTruncate = truncate,
    .xSync = sync,
    .xFileSize = size,
    .xLock = lock,
    .xUnlock = lock,
    .xCheckReservedLock = isReserved,
    .xFileControl = control,
    .xSectorSize = sectorSize,
    .xDeviceCharacteristics = characteristics,
    .xShmMap = nullptr,
    .xShmLock = nullptr,
    .xShmBarrier = nullptr,
    .xShmUnmap = nullptr,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

SecFileJournal::SecFileJournal(SecFileDescriptor file, const SecFileFolder& folder, bool isNew)
    : sqlite3_file{&methods}, file_(std::move(file)), folder_(folder), isNew_(isNew) {}

void SecFileJournal::open(sqlite3_file* place, SecFileDescriptor file, const SecFileFolder& folder,
                          bool isNew) {
  new (place) SecFileJournal(std::move(file), folder, isNew);
}

int SecFileJournal::close(sqlite3_file* file) {
  of(file).~SecFileJournal();
  return SQLITE_OK;
}

int SecFileJournal::read(sqlite3_file* file, void* to, int size, sqlite3_int64 offset) {
  auto* start = static_cast<char*>(to);
  for (std::size_t left = static_cast<std::size_t>(size); left > 0;) {
    const ssize_t count = again([&] { return ::pread64(of(file).file_.number(), start, left, offset); });
    if (count < 0) return SQLITE_IOERR_READ;
    if (count == 0) return std::memset(start, 0, left), SQLITE_IOERR_SHORT_READ;
    start += count;
    offset += count;
    left -= static_cast<std::size_t>(count);
  }
  return SQLITE_OK;
}

int SecFileJournal::write(sqlite3_file* file, const void* from, int size, sqlite3_int64 offset) {
  const auto* start = static_cast<const char*>(from);
  for (std::size_t left = static_cast<std::size_t>(size); left > 0;) {
    const ssize_t count = again([&] { return ::pwrite64(of(file).file_.number(), start, left, offset); });
    if (count <= 0) return codeOf(SQLITE_IOERR_WRITE);
    start += count;
    offset += count;
    left -= static_cast<std::size_t>(count);
  }
  return SQLITE_OK;
}

int SecFileJournal::truncate(sqlite3_file* file, sqlite3_int64 size) {
  return ::ftruncate64(of(file).file_.number(), size) == 0 ? SQLITE_OK : codeOf(SQLITE_IOERR_TRUNCATE);
}

/// Syncs a new journal's name, too: without it, a power cut would leave a changed store without its journal.
int SecFileJournal::sync(sqlite3_file* file, int) {
  SecFileJournal& self = of(file);
  if (::fdatasync(self.file_.number()) != 0) return codeOf(SQLITE_IOERR_FSYNC);
  if (self.isNew_ && ::fsync(self.folder_.descriptor()) != 0) return codeOf(SQLITE_IOERR_DIR_FSYNC);
  self.isNew_ = false;
  return SQLITE_OK;
}

int SecFileJournal::size(sqlite3_file* file, sqlite3_int64* size) {
  struct stat status {};
  if (::fstat(of(file).file_.number(), &status) != 0) return SQLITE_IOERR_FSTAT;
  *size = status.st_size;
  return SQLITE_OK;
}

int SecFileJournal::lock(sqlite3_file*, int) { return SQLITE_OK; }

int SecFileJournal::isReserved(sqlite3_file*, int* result) { return *result = 0, SQLITE_OK; }

int SecFileJournal::control(sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; }

int SecFileJournal::sectorSize(sqlite3_file*) { return 0; }

int SecFileJournal::characteristics(sqlite3_file*) { return 0; }
