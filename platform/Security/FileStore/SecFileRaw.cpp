#include <Security/FileStore/SecFileRaw.h>

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include <Security/FileStore/SecFileSQLite.h>

namespace {

constexpr int attempts = 50;
constexpr std::chrono::milliseconds pause(100);
constexpr std::size_t chunk = std::size_t{1} << 20;

/// A file that SQLite's own layer has opened: closing a descriptor of ours would drop the locks that
/// connections of this process hold on it.
class File {
 public:
  explicit File(const std::string& path)
      : path_(::sqlite3_create_filename(path.c_str(), "", "", 0, nullptr)),
        system_(::sqlite3_vfs_find("unix")) {
    secRequire(path_ != nullptr, errSecAllocate);
    secRequire(system_ != nullptr, errSecNotAvailable);
    memory_ = std::make_unique<std::max_align_t[]>(
        (static_cast<std::size_t>(system_->szOsFile) + sizeof(std::max_align_t) - 1) /
        sizeof(std::max_align_t));
    int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_MAIN_DB;
    if (system_->xOpen(system_, path_.get(), get(), flags, &flags) != SQLITE_OK) secFailByErrno();
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    get()->pMethods->xUnlock(get(), SQLITE_LOCK_NONE);
    get()->pMethods->xClose(get());
  }

  void lock() {
    int result = SQLITE_BUSY;
    for (int attempt = 0; attempt < attempts && result == SQLITE_BUSY; ++attempt) {
      if (attempt > 0) std::this_thread::sleep_for(pause);
      result = get()->pMethods->xLock(get(), SQLITE_LOCK_SHARED);
    }
    secCheckSQLite(result);
  }

  bool isAtItsPath() {
    int hasMoved = 1;
    const int result = get()->pMethods->xFileControl(get(), SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    return result == SQLITE_OK && hasMoved == 0;
  }

  SecBytes read() {
    sqlite3_int64 size = 0;
    secCheckSQLite(get()->pMethods->xFileSize(get(), &size));
    SecBytes content(static_cast<std::size_t>(size));
    for (std::size_t at = 0; at < content.size(); at += chunk) {
      const std::size_t count = std::min(chunk, content.size() - at);
      // What cannot be read stays zero: the rest may still be there.
      static_cast<void>(get()->pMethods->xRead(get(), content.data() + at, static_cast<int>(count),
                                               static_cast<sqlite3_int64>(at)));
    }
    return content;
  }

 private:
  sqlite3_file* get() { return reinterpret_cast<sqlite3_file*>(memory_.get()); }

  struct FreePath {
    void operator()(const char* path) const { ::sqlite3_free_filename(path); }
  };
  // SQLite's layer keeps the path, and expects its parameters around it.
  std::unique_ptr<const char, FreePath> path_;
  sqlite3_vfs* system_;
  std::unique_ptr<std::max_align_t[]> memory_;
};

}  // namespace

SecBytes secReadRaw(const SecFileFolder& folder, const std::string& name) {
  const auto number = folder.judge(name);
  secRequire(number.has_value(), errSecNoSuchKeychain);
  File file(folder.pathOf(name));
  secRequire(file.isAtItsPath() && folder.judge(name) == number, errSecNotPrivate);
  file.lock();
  return file.read();
}
