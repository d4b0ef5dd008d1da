#include <Security/FileStore/SecFileVFS.h>

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileJournal.h>
#include <Security/FileStore/SecFileJournalRule.h>
#include <Security/FileStore/SecFileSQLite.h>

namespace {

/// Runs what a callback of SQLite does, and returns its failure as a result.
template <class Action>
int resultOf(Action&& action) {
  const OSStatus status = secStatusOf(action);
  return status == errSecSuccess ? SQLITE_OK : secSQLiteCodeOf(status);
}

SecBytes readAt(const SecFileDescriptor& file, std::size_t offset, std::size_t size) {
  SecBytes bytes(size);
  const ssize_t count = ::pread64(file.number(), bytes.data(), size, static_cast<off64_t>(offset));
  bytes.resize(static_cast<std::size_t>(secCall(count)));
  return bytes;
}

}  // namespace

SecFileVFS::SecFileVFS(const SecFileFolder& folder, std::string name)
    : sqlite3_vfs{},
      system_(::sqlite3_vfs_find("unix")),
      folder_(folder),
      registeredName_("vxfoundation-" + std::to_string(reinterpret_cast<std::uintptr_t>(this))),
      name_(std::move(name)),
      path_(folder.pathOf(name_)),
      journal_(name_ + "-journal") {
  secRequire(system_ != nullptr, errSecNotAvailable);
  static_cast<sqlite3_vfs&>(*this) = *system_;
  pNext = nullptr;
  szOsFile = std::max(system_->szOsFile, static_cast<int>(sizeof(SecFileJournal)));
  mxPathname = PATH_MAX;
  xOpen = open;
  xDelete = remove;
  xAccess = access;
  xFullPathname = fullPath;
  zName = registeredName_.c_str();
  secRequire(::sqlite3_vfs_register(this, 0) == SQLITE_OK, errSecAllocate);
}

SecFileVFS::~SecFileVFS() { ::sqlite3_vfs_unregister(this); }

int SecFileVFS::open(sqlite3_vfs* vfs, const char*, sqlite3_file* file, int flags, int* flagsOut) {
  file->pMethods = nullptr;
  if (flagsOut) *flagsOut = flags;
  if (!(flags & (SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL))) return SQLITE_CANTOPEN;
  bool opened = true;
  const int result = resultOf([&] {
    if (flags & SQLITE_OPEN_MAIN_JOURNAL)
      opened = of(vfs).openJournal(file, flags);
    else
      of(vfs).openStore(file, flags, flagsOut);
  });
  return opened ? result : SQLITE_CANTOPEN;
}

void SecFileVFS::openStore(sqlite3_file* file, int flags, int* flagsOut) {
  const auto before = folder_.judge(name_);
  secRequire(before.has_value(), errSecNoSuchKeychain);
  const int result = system_->xOpen(system_, path_.c_str(), file, flags, flagsOut);
  secRequire(result != SQLITE_NOMEM, errSecAllocate);
  if (result != SQLITE_OK) secFailByErrno();
  // What is at the path is what was opened, and it is what is in the folder.
  int hasMoved = 1;
  struct stat status {};
  const bool isSame = ::lstat(path_.c_str(), &status) == 0 && secRequirePrivateFile(status) == before &&
                      folder_.judge(name_) == before &&
                      file->pMethods->xFileControl(file, SQLITE_FCNTL_HAS_MOVED, &hasMoved) == SQLITE_OK &&
                      hasMoved == 0;
  secRequire(isSame, errSecNotPrivate);
  store_ = file;
  file_ = *before;
}

/// Returns false if there is no journal. SQLite opens one to read its first byte, to play it back (the store
/// is then locked against everybody else), or to write a new one.
bool SecFileVFS::openJournal(sqlite3_file* file, int flags) {
  const bool writes = flags & SQLITE_OPEN_CREATE;
  SecFileDescriptor journal;
  if (writes) journal = createJournal();
  const bool isNew = journal.isOpen();
  if (!isNew) journal = folder_.open(journal_, flags & SQLITE_OPEN_READONLY ? O_RDONLY : O_RDWR);
  if (!journal.isOpen()) return false;
  // Where SQLite writes, what is left of an older journal could be taken for the end of the new one.
  if (writes) secCall(::ftruncate64(journal.number(), 0));
  if (!writes && flags & SQLITE_OPEN_READWRITE) judge(journal);
  SecFileJournal::open(file, std::move(journal), folder_, isNew);
  return true;
}

/// Returns a descriptor that is not open if there is something of that name.
SecFileDescriptor SecFileVFS::createJournal() {
  const int flags = O_CREAT | O_EXCL | O_RDWR | O_NOFOLLOW | O_CLOEXEC;
  SecFileDescriptor journal(::openat(folder_.descriptor(), journal_.c_str(), flags, 0600));
  if (!journal.isOpen() && errno != EEXIST) secFailByErrno();
  if (journal.isOpen()) secCall(::fchmod(journal.number(), 0600));  // whatever the umask has left of it
  return journal;
}

/// SQLite cuts the store to the size that the journal's header states, even if no record follows; after that,
/// an emptied journal is only removed.
void SecFileVFS::judge(const SecFileDescriptor& journal) {
  const auto read = [&](std::size_t offset, std::size_t size) { return readAt(journal, offset, size); };
  const SecJournalVerdict verdict = secJudgeJournal(read, firstPage());
  secRequire(verdict != SecJournalVerdict::foreign, errSecForeignJournal);
  if (verdict == SecJournalVerdict::unsynced) secCall(::ftruncate64(journal.number(), 0));
}

/// Reads page 1 of the store through SQLite's descriptor: closing another one would drop SQLite's locks.
SecBytes SecFileVFS::firstPage() const {
  SecBytes page(secFilePageSize);
  secRequire(store_ != nullptr, errSecIO);
  const int result = store_->pMethods->xRead(store_, page.data(), static_cast<int>(page.size()), 0);
  if (result == SQLITE_IOERR_SHORT_READ) return {};
  secRequire(result == SQLITE_OK, errSecIO);
  return page;
}

int SecFileVFS::remove(sqlite3_vfs* vfs, const char* path, int syncFolder) {
  const SecFileVFS& self = of(vfs);
  if (self.folder_.pathOf(self.journal_) != path) return SQLITE_IOERR_DELETE;
  if (::unlinkat(self.folder_.descriptor(), self.journal_.c_str(), 0) != 0)
    return errno == ENOENT ? SQLITE_IOERR_DELETE_NOENT : SQLITE_IOERR_DELETE;
  if (syncFolder && ::fsync(self.folder_.descriptor()) != 0) return SQLITE_IOERR_DIR_FSYNC;
  return SQLITE_OK;
}

/// There is nothing but a journal: a write-ahead log that somebody put there would be opened.
int SecFileVFS::access(sqlite3_vfs* vfs, const char* path, int, int* result) {
  const SecFileVFS& self = of(vfs);
  *result = 0;
  if (self.folder_.pathOf(self.journal_) != path) return SQLITE_OK;
  return resultOf([&] {
    struct stat status {};
    if (::fstatat(self.folder_.descriptor(), self.journal_.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      if (errno != ENOENT) secFailByErrno();
      return;
    }
    secRequirePrivateFile(status);
    *result = status.st_size > 0;
  });
}

int SecFileVFS::fullPath(sqlite3_vfs*, const char* path, int size, char* full) {
  const std::size_t length = std::strlen(path);
  if (length >= static_cast<std::size_t>(size)) return SQLITE_CANTOPEN;
  std::memcpy(full, path, length + 1);
  return SQLITE_OK;
}
