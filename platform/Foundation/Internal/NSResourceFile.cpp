#include <Foundation/Internal/NSResourceFile.h>

#include <sys/stat.h>

#include <ctime>
#include <mutex>
#include <optional>
#include <unordered_map>

#include <Foundation/NSPropertyList.h>

namespace {

/// What changes with a file's content.
struct Version {
  dev_t device;
  ino_t inode;
  off_t size;
  time_t seconds;
  long nanoseconds;
  bool operator==(const Version&) const = default;

  /// Whether the next change will have another time, however coarse the file system's times are.
  bool isSettled() const { return std::time(nullptr) > seconds + 2; }
};

std::optional<Version> versionOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return Version{status.st_dev, status.st_ino, status.st_size, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

class Files {
 public:
  // Never destroyed: exit handlers of a host may still need it.
  static Files& shared() {
    static Files& only = *new Files;
    return only;
  }

  NSRefPtr<NSDictionary> contentOf(const std::string& path, const Version& version) {
    if (const auto content = kept(path, version)) return *content;
    const auto content = NSDynamicCast<NSDictionary>(NSPropertyListWithContentsOfFile(path));
    if (version.isSettled()) keep(path, {version, content});
    return content;
  }

 private:
  struct Kept {
    Version version;
    NSRefPtr<NSDictionary> content;
  };

  std::optional<NSRefPtr<NSDictionary>> kept(const std::string& path, const Version& version) {
    const std::lock_guard lock(mutex_);
    const auto found = files_.find(path);
    if (found == files_.end() || found->second.version != version) return std::nullopt;
    return found->second.content;
  }

  void keep(const std::string& path, Kept file) {
    constexpr std::size_t most = 100;
    const std::lock_guard lock(mutex_);
    if (files_.size() >= most) files_.clear();
    files_.insert_or_assign(path, std::move(file));
  }

  std::mutex mutex_;
  std::unordered_map<std::string, Kept> files_;
};

}  // namespace

NSRefPtr<NSDictionary> NSResourceDictionary(const std::string& path) {
  const auto version = versionOf(path);
  return version ? Files::shared().contentOf(path, *version) : nullptr;
}
