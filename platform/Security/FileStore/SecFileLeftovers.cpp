#include <Security/FileStore/SecFileLeftovers.h>

#include <algorithm>

#include <Security/FileStore/SecFileKeyFile.h>
#include <Security/FileStore/SecFileRaw.h>
#include <Security/FileStore/SecFileScan.h>

namespace {

constexpr std::string_view suffix = ".key";

bool isNamed(const std::vector<SecFileHeader>& headers, const std::string& keyFile) {
  return std::any_of(headers.begin(), headers.end(), [&](const SecFileHeader& header) {
    return std::any_of(header.slots.begin(), header.slots.end(),
                       [&](const SecFileSlot& slot) { return secKeyFileName(slot.number) == keyFile; });
  });
}

/// Whoever cannot be sure leaves the key alone: a file without an intact header may still be salvaged, and
/// one with a journal may go back to a state that names it.
SecFileKeyUse judgeStore(const SecFileFolder& folder, const std::string& store, const std::string& keyFile) {
  if (!folder.contains(store)) return SecFileKeyUse::leftover;
  if (folder.contains(store + "-journal")) return SecFileKeyUse::used;
  const std::vector<SecFileHeader> headers = secScanHeaders(secReadRaw(folder, store));
  return headers.empty() || isNamed(headers, keyFile) ? SecFileKeyUse::used : SecFileKeyUse::leftover;
}

SecFileKeyUse judgeOwner(const SecFileOwner& owner, const std::string& keyFile) {
  const std::size_t slash = owner.path.rfind('/') + 1;
  std::optional<SecFileFolder> folder;
  static_cast<void>(
      secStatusOf([&] { folder = secOpenFolder(owner.path.substr(0, slash), SecFolderRule::any); }));
  // Another device means that the store's own is not mounted there.
  if (!folder || folder->device() != owner.file.device) return SecFileKeyUse::unknown;
  SecFileKeyUse use = SecFileKeyUse::used;
  static_cast<void>(secStatusOf([&] { use = judgeStore(*folder, owner.path.substr(slash), keyFile); }));
  return use;
}

}  // namespace

SecFileKeyFinding secJudgeKeyFile(const SecFileFolder& keyFolder, const std::string& name) {
  SecFileKeyFinding finding{name, "", SecFileKeyUse::unknown};
  static_cast<void>(secStatusOf([&] {
    const auto key = secReadKeyFile(keyFolder, name);
    if (key) finding.store = key->owner.path;
    if (key) finding.use = judgeOwner(key->owner, name);
  }));
  return finding;
}

std::vector<SecFileKeyFinding> secJudgeKeyFiles(const SecFileFolder& keyFolder) {
  std::vector<SecFileKeyFinding> findings;
  for (const std::string& name : keyFolder.names())
    if (name.ends_with(suffix)) findings.push_back(secJudgeKeyFile(keyFolder, name));
  return findings;
}

void secEraseKeyFile(const SecFileFolder& keyFolder, const std::string& name) {
  secRequire(name.ends_with(suffix) && name.find('/') == name.npos && keyFolder.contains(name), errSecParam);
  // Held by whoever makes a key file until its store names it.
  const SecFileKeyLock lock(keyFolder, SecFileKeyLock::Purpose::erase);
  secRequire(secJudgeKeyFile(keyFolder, name).use != SecFileKeyUse::used, errSecParam);
  keyFolder.erase(name);
}
