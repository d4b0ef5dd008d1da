#include <Foundation/NSArray.h>
#include <Foundation/NSNumber.h>
#include <Security/SecDefaultStorage.h>
#include <Security/SecFileStorage.h>
#include <Security/SecItem.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "StorageContestant.h"

namespace {

class FileStore final : public StorageContestant {
 public:
  FileStore(const std::string& folder, bool openedPerCall) : openedPerCall_(openedPerCall) {
    folder_ = folder + "/store-benchmark.XXXXXX";
    if (!::mkdtemp(folder_.data())) throw std::runtime_error("cannot make a folder in " + folder);
    open();
  }
  ~FileStore() override { std::filesystem::remove_all(folder_); }

  std::string name() const override {
    return openedPerCall_ ? "file store, opened per call" : "file store, kept open";
  }

  std::shared_ptr<SecFileStorage> storage() { return storage_; }

 private:
  std::shared_ptr<SecStorage> openStorage() override {
    if (openedPerCall_) open();
    return storage_;
  }

  void open() {
    const SecFilePlace place{folder_ + "/data/credentials.store", folder_ + "/keys", true};
    std::unique_ptr<SecFileStorage> storage;
    require(SecFileStorage::open(place, SecFileStorage::Missing::make, storage));
    storage_ = std::move(storage);
  }

  bool openedPerCall_;
  std::string folder_;
  std::shared_ptr<SecFileStorage> storage_;
};

}  // namespace

std::unique_ptr<Contestant> makeFileStore(const std::string& folder, bool openedPerCall) {
  return std::make_unique<FileStore>(folder, openedPerCall);
}

Listing makeListing(const std::string& folder, std::size_t held) {
  const auto store = std::make_shared<FileStore>(folder, false);
  store->fill(held);
  const auto rows = [store] {
    std::size_t count = 0;
    store->run(SecStorage::Access::read, [&](SecTransaction& transaction) {
      transaction.find({}, SecSecrets::skip, [&](const SecRow&) { return ++count > 0; });
    });
    return count;
  };
  const auto list = [store] {
    secSetDefaultStorage(store->storage());
    const auto query = NSMutableDictionary::dictionary();
    query->setObject(kSecClassGenericPassword, kSecClass);
    query->setObject(kSecMatchLimitAll, kSecMatchLimit);
    query->setObject(NSNumber::numberWithBool(true), kSecReturnAttributes);
    NSRefPtr<NSArray> entries;
    if (SecItemCopyMatching(query, &entries) != errSecSuccess) throw std::runtime_error("cannot list");
    return entries->count();
  };
  return {rows, list};
}

Rotation makeRotation(const std::string& folder, std::size_t held) {
  const auto store = std::make_shared<FileStore>(folder, false);
  const auto rotate = [store] {
    if (store->storage()->rotate() != errSecSuccess) throw std::runtime_error("cannot rotate");
  };
  return {[store, held] { store->fill(held); }, rotate};
}
