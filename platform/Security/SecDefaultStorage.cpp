#include <Security/SecDefaultStorage.h>

#include <mutex>
#include <utility>

#include <Security/SecDesktopStorage.h>
#include <Security/SecFailure.h>
#include <Security/SecFileStorage.h>
#include <Security/SecMemoryStorage.h>

namespace {

std::shared_ptr<SecStorage> openUserStorage() {
  SecFilePlace place;
  std::unique_ptr<SecFileStorage> file;
  secCheck(secDefaultFilePlace(place));
  secCheck(SecFileStorage::open(place, SecFileStorage::Missing::make, file));
  return file;
}

std::shared_ptr<SecStorage> makeStorage(SecStorageKind kind) {
  if (kind == SecStorageKind::file) return nullptr;
  if (kind == SecStorageKind::memory) return std::make_shared<SecMemoryStorage>();
  std::unique_ptr<SecDesktopStorage> desktop;
  SecDesktopStorage::open({}, desktop);
  return desktop;
}

class Choice {
 public:
  void set(std::shared_ptr<SecStorage> storage) {
    const std::lock_guard lock(mutex_);
    std::swap(storage_, storage);
  }

  std::shared_ptr<SecStorage> copy() {
    const std::lock_guard lock(mutex_);
    if (!storage_) storage_ = openUserStorage();
    return storage_;
  }

 private:
  std::mutex mutex_;
  std::shared_ptr<SecStorage> storage_;
};

// Never destroyed: a host's exit handlers may still use it.
Choice& choice() {
  static Choice& ofProcess = *new Choice;
  return ofProcess;
}

}  // namespace

void secSetDefaultStorage(std::shared_ptr<SecStorage> storage) { choice().set(std::move(storage)); }

void secSetDefaultStorage(SecStorageKind kind) { secSetDefaultStorage(makeStorage(kind)); }

OSStatus secCopyDefaultStorage(std::shared_ptr<SecStorage>& storage) {
  return secStatusOf([&] { storage = choice().copy(); });
}
