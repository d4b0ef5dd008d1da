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

bool isNamed(const std::vector<SecFileHeader>& headers, const std::string& keyFile) {
  return std::any_of(headers.begin(), headers.end(), [&](const SecFileHeader& header) {
    return std::any_of(header.slots.begin(), header.slots.end(),
                       [&](const SecFileSlot& slot) { return secKeyFileName(slot.number) == keyFile; });
  });
}

/// Whoever cannot be sure leaves the key alone: a file without an intact header may still be salvaged, and
/// one with a journal may go back to a state that names it.
Use judgeStore(const Located& store, const std::string& keyFile) {
  if (!store.folder->contains(store.name)) return Use::leftover;
  if (store.folder->contains(store.name + "-journal")) return Use::used;
  const std::vector<SecFileHeader> headers = store.headers();
  return headers.empty() || isNamed(headers, keyFile) ? Use::used : Use::leftover;
}

Use judgeOwner(const SecFileOwner& owner, const std::string& keyFile) {
  const Located store(owner.path);
  // Another device means that the store's own is not mounted there.
  if (!store.folder || store.folder->device() != owner.file.device) return Use::unknown;
  Use use = Use::used;
  static_cast<void>(secStatusOf([&] { use = judgeStore(store, keyFile); }));
  return use;
}

/// The key files in one folder.
class KeyFiles {
 public:
  explicit KeyFiles(const SecFilePlace& place) : folder_(secOpenFolder(place.keyFolder, SecFolderRule::own)) {
    const Located store(place.store);
    if (store.folder && store.folder->contains(store.name)) learn(store);
  }

  std::vector<SecFileKeptKey> judgeAll() const {
    std::vector<SecFileKeptKey> keys;
    if (!folder_) return keys;
    for (const std::string& name : folder_->names())
      if (name.ends_with(suffix)) keys.push_back(judge(name));
    return keys;
  }

  void erase(const std::string& path) const {
    const std::string name = path.substr(path.rfind('/') + 1);
    const Located located(path);
    const bool isHere =
        folder_ && (path == name || (located.folder && located.folder->path() == folder_->path()));
    secRequire(isHere && name.ends_with(suffix) && folder_->contains(name), errSecParam);
    // Held by whoever makes a key file until its store names it.
    const SecFileKeyLock lock(*folder_, SecFileKeyLock::Purpose::erase);
    secRequire(judge(name).use != Use::used, errSecParam);
    folder_->erase(name);
  }

 private:
  SecFileKeptKey judge(const std::string& name) const {
    SecFileKeptKey kept{folder_->pathOf(name), "", Use::unknown};
    static_cast<void>(secStatusOf([&] {
      const auto key = secReadKeyFile(*folder_, name);
      if (key) kept.store = key->owner.path;
      if (key) kept.use = judgeOwner(key->owner, name);
    }));
    if (isNamed(headers_, name) || former_.contains(name)) kept.use = Use::used;
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

std::vector<SecFileKeptKey> secJudgeKeyFiles(const SecFilePlace& place) { return KeyFiles(place).judgeAll(); }

void secEraseKeyFile(const SecFilePlace& place, const std::string& path) { KeyFiles(place).erase(path); }
