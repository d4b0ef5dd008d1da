#include <Security/FileStore/SecFileLeftovers.h>

#include <algorithm>
#include <set>

#include <Security/FileStore/SecFileKeyFile.h>
#include <Security/FileStore/SecFileMigration.h>
#include <Security/FileStore/SecFileRaw.h>
#include <Security/FileStore/SecFileScan.h>
#include <Security/FileStore/SecFileSite.h>

namespace {

using Use = SecFileKeptKey::Use;

constexpr std::string_view suffix = ".key";

/// The folder and the name of the file at a path. No value if the folder cannot be reached.
struct Located {
  explicit Located(const std::string& path) : name(path.substr(path.rfind('/') + 1)) {
    const std::string above = path.substr(0, path.size() - name.size());
    static_cast<void>(
        secStatusOf([&] { folder = secOpenFolder(above.empty() ? "." : above, SecFolderRule::any); }));
  }
  std::vector<SecFileHeader> headers() const { return secScanHeaders(secReadRaw(*folder, name)); }

  std::string name;
  std::optional<SecFileFolder> folder;
};

bool isNamed(const std::vector<SecFileHeader>& headers, const std::string& number) {
  return std::any_of(headers.begin(), headers.end(), [&](const SecFileHeader& header) {
    return std::any_of(header.slots.begin(), header.slots.end(),
                       [&](const SecFileSlot& slot) { return secHexadecimal(slot.number) == number; });
  });
}

/// Whoever cannot be sure leaves the key alone: a file without an intact header may still be salvaged, and
/// one with a journal may go back to a state that names it.
Use judgeStore(const Located& store, const std::string& number) {
  if (!store.folder->contains(store.name)) return Use::leftover;
  if (store.folder->contains(store.name + "-journal")) return Use::used;
  const std::vector<SecFileHeader> headers = store.headers();
  return headers.empty() || isNamed(headers, number) ? Use::used : Use::leftover;
}

Use judgeOwner(const SecFileOwner& owner, const std::string& number) {
  const Located store(owner.path);
  // Another device means that the store's own is not mounted there.
  if (!store.folder || store.folder->device() != owner.file.device) return Use::unknown;
  Use use = Use::used;
  static_cast<void>(secStatusOf([&] { use = judgeStore(store, number); }));
  return use;
}

/// The keys in one folder, and those that are kept elsewhere.
class KeptKeys {
 public:
  explicit KeptKeys(const SecFilePlace& place) : folder_(secOpenFolder(place.keyFolder, SecFolderRule::own)) {
    const Located store(place.store);
    if (store.folder && store.folder->contains(store.name)) learn(store);
  }

  std::vector<SecFileKeptKey> judgeFiles() const {
    std::vector<SecFileKeptKey> keys;
    if (!folder_) return keys;
    for (const std::string& name : folder_->names())
      if (name.ends_with(suffix)) keys.push_back(judgeFile(name));
    return keys;
  }

  void eraseFile(const std::string& path) const {
    const std::string name = path.substr(path.rfind('/') + 1);
    const Located located(path);
    const bool isHere =
        folder_ && (path == name || (located.folder && located.folder->path() == folder_->path()));
    secRequire(isHere && name.ends_with(suffix) && folder_->contains(name), errSecParam);
    const auto lock = lockFolder();
    secRequire(judgeFile(name).use != Use::used, errSecParam);
    folder_->erase(name);
  }

  std::vector<SecFileKeptKey> judgeItems(SecFileKeeper& keeper) const {
    std::vector<SecFileKeptKey> keys;
    for (const auto& [number, owner] : keeper.list())
      keys.push_back({number, owner.path, judge(owner, number)});
    return keys;
  }

  void eraseItem(SecFileKeeper& keeper, const std::string& wanted) const {
    const auto lock = lockFolder();
    bool found = false;
    for (const auto& [number, owner] : keeper.list()) {
      if (number != wanted) continue;
      secRequire(judge(owner, number) != Use::used, errSecParam);
      keeper.erase(number, owner);
      found = true;
    }
    secRequire(found, errSecParam);
  }

 private:
  /// Held by whoever makes a key until its store names it.
  std::optional<SecFileKeyLock> lockFolder() const {
    if (!folder_) return std::nullopt;
    return SecFileKeyLock(*folder_, SecFileKeyLock::Purpose::erase);
  }

  Use judge(const SecFileOwner& owner, const std::string& number) const {
    return isNamed(headers_, number) ? Use::used : judgeOwner(owner, number);
  }

  SecFileKeptKey judgeFile(const std::string& name) const {
    SecFileKeptKey kept{folder_->pathOf(name), "", Use::unknown};
    const std::string number = name.substr(0, name.size() - suffix.size());
    static_cast<void>(secStatusOf([&] {
      const auto key = secReadKeyFile(*folder_, name);
      if (key) kept.store = key->owner.path;
      if (key) kept.use = judgeOwner(key->owner, number);
    }));
    if (isNamed(headers_, number) || former_.contains(name)) kept.use = Use::used;
    return kept;
  }

  /// The store of the place may have been moved there, and it or copies of it may have format 1, whose key
  /// files do not say where their store is.
  void learn(const Located& store) {
    headers_ = store.headers();
    former_.insert(secKeyFileOfCopy(*store.folder, store.name));
    for (const std::string& copy : secFormerCopies(*store.folder, store.name))
      former_.insert(secKeyFileOfCopy(*store.folder, copy));
  }

  std::optional<SecFileFolder> folder_;
  std::vector<SecFileHeader> headers_;  // of the store of the place
  std::set<std::string> former_;        // its key files in format 1
};

}  // namespace

std::vector<SecFileKeptKey> secJudgeKeyFiles(const SecFilePlace& place) {
  return KeptKeys(place).judgeFiles();
}

void secEraseKeyFile(const SecFilePlace& place, const std::string& path) { KeptKeys(place).eraseFile(path); }

std::vector<SecFileKeptKey> secJudgeItems(const SecFilePlace& place, SecFileKeeper& keeper) {
  return KeptKeys(place).judgeItems(keeper);
}

void secEraseItem(const SecFilePlace& place, SecFileKeeper& keeper, const std::string& number) {
  KeptKeys(place).eraseItem(keeper, number);
}
