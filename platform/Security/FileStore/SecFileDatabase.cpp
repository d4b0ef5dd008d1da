#include <Security/FileStore/SecFileDatabase.h>

#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include <Security/FileStore/SecFileFormat.h>

namespace {

using namespace std::chrono_literals;

constexpr std::size_t reserve = std::size_t{256} << 10;
constexpr std::size_t pageSize = 4096;
constexpr std::size_t headerSize = 100;

/// Reads the first bytes through SQLite: opening and closing the file here would drop the locks that other
/// connections of this process hold on it.
std::array<std::byte, headerSize> readHeader(sqlite3* connection) {
  sqlite3_file* file = nullptr;
  secCheckSQLite(sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file));
  std::array<std::byte, headerSize> header{};
  const int code = file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0);
  if (code == SQLITE_IOERR_SHORT_READ) throw SecFailure{errSecInvalidKeychain};
  secCheckSQLite(code);
  return header;
}

template <class Integer>
Integer headerField(SecView header, std::size_t offset) {
  return SecByteReader(header.subspan(offset)).number<Integer>();
}

void set(sqlite3* connection, int option, int value) {
  secCheckSQLite(sqlite3_db_config(connection, option, value, nullptr));
}

}  // namespace

SecFileDatabase::SecFileDatabase(const std::string& path, std::chrono::milliseconds waitLimit)
    : waitLimit_(waitLimit) {
  open(path.c_str(), SQLITE_OPEN_NOFOLLOW);
  checkMode(path);
  checkHeader();
  configure();
}

SecFileDatabase::SecFileDatabase() {
  open(":memory:", SQLITE_OPEN_MEMORY);
  run("PRAGMA page_size=4096");
  const std::string numbers = "PRAGMA application_id=" + std::to_string(secFileApplication) +
                              ";PRAGMA user_version=" + std::to_string(secFileFormat);
  secCheckSQLite(sqlite3_exec(connection_.get(), numbers.c_str(), nullptr, nullptr, nullptr));
  for (const char* statement : secFileSchema) run(statement);
}

void SecFileDatabase::open(const char* path, int flags) {
  sqlite3* connection = nullptr;
  const int code =
      sqlite3_open_v2(path, &connection,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | flags, nullptr);
  connection_.reset(connection);
  secRequire(connection != nullptr, errSecAllocate);
  secCheckSQLite(code);
}

/// Where the file could not be opened for writing, SQLite opens it for reading only, for whatever reason.
void SecFileDatabase::checkMode(const std::string& path) {
  const bool readOnly = sqlite3_db_readonly(connection_.get(), "main") == 1;
  secRequire(!readOnly || ::access(path.c_str(), W_OK) != 0, errSecIO);
}

/// Pages that the file no longer uses are as good as room on the disk.
void SecFileDatabase::requireRoom(std::size_t size) {
  struct statvfs room {};
  const std::string path = sqlite3_db_filename(connection_.get(), "main");
  if (::statvfs(path.c_str(), &room) != 0) return;
  if (room.f_bavail >= (reserve + 2 * size) / room.f_frsize) return;
  auto unused = use("PRAGMA freelist_count");
  secRequire(unused.step() && static_cast<std::size_t>(unused.integer(0)) > 4 + 2 * size / pageSize,
             errSecDiskFull);
}

void SecFileDatabase::checkHeader() {
  const auto header = readHeader(connection_.get());
  const SecView bytes(header);
  constexpr char magic[] = "SQLite format 3";
  secRequire(std::memcmp(header.data(), magic, sizeof magic) == 0, errSecInvalidKeychain);
  secRequire(headerField<std::uint32_t>(bytes, 68) == secFileApplication, errSecInvalidKeychain);
  secRequire(headerField<std::uint32_t>(bytes, 60) <= secFileFormat, errSecWrongSecVersion);
  secRequire(headerField<std::uint32_t>(bytes, 60) == secFileFormat, errSecDecode);
  // A store keeps a rollback journal; anything else here would make SQLite lay further files beside it.
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
  // What reads the file takes the lock. This needs no table: the first statement that does reads the schema,
  // and would take and leave a lock for that alone.
  run("PRAGMA user_version");
}

void SecFileDatabase::beginWriting() {
  if (!writes_) {
    run("PRAGMA synchronous=EXTRA");
    run("PRAGMA secure_delete=ON");
  }
  writes_ = true;
  run("BEGIN IMMEDIATE");
}

/// Asks again every few milliseconds: SQLite's own waits grow so long that one of several busy writers
/// may never meet the moment between two others.
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

SecFileStatement SecFileDatabase::storeRow() { return use("SELECT id,slot,seal FROM store"); }

void SecFileDatabase::checkSchema() {
  if (checkedVersion_ == dataVersion()) return;
  SecFileStatement rows = use("SELECT sql FROM sqlite_schema");
  for (const char* expected : secFileSchema)
    secRequire(rows.step() && rows.text(0) == expected, errSecDecode);
  secRequire(!rows.step(), errSecDecode);
  checkedVersion_ = dataVersion();
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
  // From here on the destructor ends what was begun, should the rest of it fail. Prepared ahead, so that want
  // of memory cannot keep a transaction from being ended.
  static_cast<void>(database.use("ROLLBACK"));
  writing ? database.beginWriting() : database.beginReading();
}

SecFileUnitOfWork::~SecFileUnitOfWork() {
  if (!database_.inTransaction()) return;
  try {
    database_.run("ROLLBACK");
  } catch (const SecFailure&) {
    // What could not be rolled back now is, from the journal, by whoever opens the store next.
  } catch (const std::bad_alloc&) {
  }
}
