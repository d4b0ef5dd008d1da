#include <Security/SecDefaultStorage.h>

#include <mutex>
#include <utility>

#include <Security/SecFileStorage.h>

namespace {

OSStatus openUserStorage(std::shared_ptr<SecStorage>& storage) {
  SecFilePlace place;
  std::unique_ptr<SecFileStorage> file;
  OSStatus status = secDefaultFilePlace(place);
  if (status == errSecSuccess) status = SecFileStorage::open(place, SecFileStorage::Missing::make, file);
  if (status == errSecSuccess) storage = std::move(file);
  return status;
}

class Choice {
 public:
  void set(std::shared_ptr<SecStorage> storage) {
    const std::lock_guard lock(mutex_);
    std::swap(storage_, storage);
  }

  OSStatus copy(std::shared_ptr<SecStorage>& storage) {
    const std::lock_guard lock(mutex_);
    const OSStatus status = storage_ ? errSecSuccess : openUserStorage(storage_);
    if (status == errSecSuccess) storage = storage_;
    return status;
  }

 private:
  std::mutex mutex_;
  std::shared_ptr<SecStorage> storage_;
};

Choice& choice() {
  static Choice ofProcess;
  return ofProcess;
}

}  // namespace

void secSetDefaultStorage(std::shared_ptr<SecStorage> storage) { choice().set(std::move(storage)); }

OSStatus secCopyDefaultStorage(std::shared_ptr<SecStorage>& storage) { return choice().copy(storage); }
