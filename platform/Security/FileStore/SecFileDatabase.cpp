#include <Security/FileStore/SecFileDatabase.h>

#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileSQLite.h>

namespace {

using namespace std::chrono_literals;

constexpr std::size_t reserve = std::size_t{256} << 10;
constexpr std::size_t headerSize = 100;

template <class Integer>
Integer headerField(SecView header, std::size_t offset) {
  return SecByteReader(header.subspan(offset)).number<Integer>();
}

void set(sqlite3* connection, int option, int value) {
  secCheckSQLite(sqlite3_db_config(connection, option, value, nullptr));
}

}  // namespace

SecFileDatabase::SecFileDatabase(const SecFileFolder& folder, const std::string& name,
                                 std::chrono::milliseconds waitLimit)
    : folder_(&folder), vfs_(std::make_unique<SecFileVFS>(folder, name)), waitLimit_(waitLimit) {
  open(vfs_->path().c_str(), 0, vfs_->name());
  checkMode();
  checkHeader();
  configure();
}

SecFileDatabase::SecFileDatabase() {
  open(":memory:", SQLITE_OPEN_MEMORY, nullptr);
  runOnce("PRAGMA page_size=" + std::to_string(secFilePageSize) +
          ";PRAGMA application_id=" + std::to_string(secFileApplication));
  setFormat(secFileFormat);
}

void SecFileDatabase::open(const char* path, int flags, const char* vfs) {
  sqlite3* connection = nullptr;
  errno = 0;
  const int code = sqlite3_open_v2(
      path, &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | flags, vfs);
  connection_.reset(connection);
  secRequire(connection != nullptr, errSecAllocate);
  secCheckSQLite(code);
}

/// A file that could not be opened for writing, whatever the reason, SQLite opens for reading only.
void SecFileDatabase::checkMode() {
  const bool readOnly = sqlite3_db_readonly(connection_.get(), "main") == 1;
  secRequire(!readOnly || ::access(vfs_->path().c_str(), W_OK) != 0, errSecIO);
}

/// Pages that the file no longer uses are as good as room on the disk.
void SecFileDatabase::requireRoom(std::size_t size) {
  struct statvfs room {};
  if (::fstatvfs(folder_->descriptor(), &room) != 0) return;
  if (room.f_bavail >= (reserve + 2 * size) / room.f_frsize) return;
  secRequire(unusedPages() > 4 + 2 * size / secFilePageSize, errSecDiskFull);
}

/// The file is read through SQLite: opening and closing it here would drop the locks that other connections
/// of this process hold on it.
sqlite3_file& SecFileDatabase::file() {
  sqlite3_file* file = nullptr;
  secCheckSQLite(sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_FILE_POINTER, &file));
  return *file;
}

SecBytes SecFileDatabase::fileContent() {
  sqlite3_file& source = file();
  sqlite3_int64 size = 0;
  errno = 0;
  secCheckSQLite(source.pMethods->xFileSize(&source, &size));
  SecBytes content(static_cast<std::size_t>(size));
  for (std::size_t at = 0; at < content.size(); at += secFilePageSize) {
    const std::size_t count = std::min(secFilePageSize, content.size() - at);
    secCheckSQLite(source.pMethods->xRead(&source, content.data() + at, static_cast<int>(count),
                                          static_cast<sqlite3_int64>(at)));
  }
  return content;
}

void SecFileDatabase::checkHeader() {
  sqlite3_file& source = file();
  std::array<std::byte, headerSize> header{};
  errno = 0;
  const int code = source.pMethods->xRead(&source, header.data(), static_cast<int>(header.size()), 0);
  if (code == SQLITE_IOERR_SHORT_READ) throw SecFailure{errSecInvalidKeychain};
  secCheckSQLite(code);
  const SecView bytes(header);
  constexpr char magic[] = "SQLite format 3";
  secRequire(std::memcmp(header.data(), magic, sizeof magic) == 0, errSecInvalidKeychain);
  secRequire(headerField<std::uint32_t>(bytes, 68) == secFileApplication, errSecInvalidKeychain);
  takeFormat(headerField<std::uint32_t>(bytes, 60));
  secRequire(headerField<std::uint16_t>(bytes, 16) == secFilePageSize, errSecDecode);
  // A store keeps a rollback journal; with anything else here, SQLite would keep other files next to it.
  secRequire(headerField<std::uint16_t>(bytes, 18) == 0x0101, errSecDecode);
}

void SecFileDatabase::configure() {
  sqlite3* const connection = connection_.get();
  set(connection, SQLITE_DBCONFIG_DEFENSIVE, 1);
  set(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0);
  set(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0);
  set(connection, SQLITE_DBCONFIG_ENABLE_VIEW, 0);
  secCheckSQLite(sqlite3_busy_handler(connection, wait, this));
  sqlite3_int64 none = 0;
  secCheckSQLite(sqlite3_file_control(connection, "main", SQLITE_FCNTL_MMAP_SIZE, &none));
  run("PRAGMA cell_size_check=ON");
}

void SecFileDatabase::beginReading() {
  run("BEGIN");
  // Reading the file takes the lock. This needs no table: the first statement with a table reads the schema,
  // and would take and release a lock only for that.
  takeFormat(static_cast<std::uint32_t>(count("PRAGMA user_version")));
}

void SecFileDatabase::beginWriting() {
  if (!writes_) {
    run("PRAGMA synchronous=EXTRA");
    run("PRAGMA secure_delete=ON");
    run("PRAGMA temp_store=MEMORY");
  }
  writes_ = true;
  run("BEGIN IMMEDIATE");
  takeFormat(static_cast<std::uint32_t>(count("PRAGMA user_version")));
  setFormat(format_);
}

void SecFileDatabase::takeFormat(std::uint32_t format) {
  secRequire(format <= secFileFormat, errSecWrongSecVersion);
  secRequire(format == secFileFormat || format == secFileFormat1, errSecDecode);
  format_ = format;
}

void SecFileDatabase::setFormat(std::uint32_t format) {
  run(format == secFileFormat ? "PRAGMA user_version=2" : "PRAGMA user_version=1");
  format_ = format;
}

std::size_t SecFileDatabase::count(const char* pragma) {
  auto row = use(pragma);
  row.requireRow();
  return static_cast<std::size_t>(row.integer(0));
}

/// Tries again every few milliseconds: SQLite's own waits grow so long that one of several busy writers may
/// never find the moment between two others.
int SecFileDatabase::wait(void* database, int tries) {
  auto& self = *static_cast<SecFileDatabase*>(database);
  const auto now = std::chrono::steady_clock::now();
  if (tries == 0) self.waitingSince_ = now;
  if (now - self.waitingSince_ >= self.waitLimit_) return 0;
  std::this_thread::sleep_for(500us * (1 + tries % 5));
  return 1;
}

SecFileStatement SecFileDatabase::use(const char* sql) {
  auto& statement = statements_[sql];
  if (!statement) {
    sqlite3_stmt* made = nullptr;
    errno = 0;
    const int code =
        sqlite3_prepare_v3(connection_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &made, nullptr);
    statement.reset(made);
    secCheckSQLite(code);
  }
  return SecFileStatement(statement.get());
}

void SecFileDatabase::runOnce(const std::string& sql) {
  errno = 0;
  secCheckSQLite(sqlite3_exec(connection_.get(), sql.c_str(), nullptr, nullptr, nullptr));
}

unsigned SecFileDatabase::dataVersion() {
  unsigned version = 0;
  secCheckSQLite(sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_DATA_VERSION, &version));
  return version;
}

SecBytes SecFileDatabase::image() const {
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> pages(
      sqlite3_serialize(connection_.get(), "main", &size, 0), sqlite3_free);
  secRequire(pages != nullptr, errSecAllocate);
  const SecView bytes = std::as_bytes(std::span(pages.get(), static_cast<std::size_t>(size)));
  return {bytes.begin(), bytes.end()};
}

SecFileUnitOfWork::SecFileUnitOfWork(SecFileDatabase& database, bool writing) : SecFileUnitOfWork(database) {
  // From here on the destructor ends the transaction if the rest fails. Prepared ahead, so that a lack of
  // memory cannot keep a transaction from being ended.
  static_cast<void>(database.use("ROLLBACK"));
  writing ? database.beginWriting() : database.beginReading();
}

SecFileUnitOfWork::~SecFileUnitOfWork() {
  if (!database_.inTransaction()) return;
  try {
    database_.run("ROLLBACK");
  } catch (const SecFailure&) {
    // Whoever opens the store next rolls it back, from the journal.
  } catch (const std::bad_alloc&) {
  }
}
