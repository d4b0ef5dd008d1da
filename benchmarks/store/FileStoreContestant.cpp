#include <Foundation/NSArray.h>
#include <Foundation/NSNumber.h>
#include <Security/SecDefaultStorage.h>
#include <Security/SecFileStorage.h>
#include <Security/SecItem.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "Contestant.h"

namespace {

void require(bool done) {
  if (!done) throw std::runtime_error("the file store failed");
}

SecEntry entryOf(std::size_t account, std::string_view password) {
  const std::string digits = std::to_string(account);
  SecEntry entry;
  entry.attributes.account.emplace(digits.begin(), digits.end());
  entry.attributes.service.emplace(u"benchmark");
  entry.secret = SecSecret(std::as_bytes(std::span(password)));
  return entry;
}

class FileStore final : public Contestant {
 public:
  FileStore(const std::string& folder, bool openedPerCall) : openedPerCall_(openedPerCall) {
    folder_ = folder + "/store-benchmark.XXXXXX";
    require(::mkdtemp(folder_.data()) != nullptr);
    open();
  }
  ~FileStore() override { std::filesystem::remove_all(folder_); }

  std::string name() const override {
    return openedPerCall_ ? "file store, opened per call" : "file store, kept open";
  }

  void fill(std::size_t count) override {
    change([&](SecTransaction& store) {
      for (std::size_t account = 0; account < count; ++account) store.insert(entryOf(account, "password"));
    });
  }

  void add(std::size_t account) override {
    change([&](SecTransaction& store) { store.insert(entryOf(account, "password")); });
  }

  bool look(std::size_t account) override {
    bool found = false;
    const auto take = [&](const SecRow& row) {
      found = !row.entry.secret.bytes().empty();
      return false;
    };
    run(SecStorage::Access::read, [&](SecTransaction& store) {
      store.find({entryOf(account, "").attributes}, SecSecrets::read, take);
    });
    return found;
  }

  void update(std::size_t account) override {
    changeFound(account, [&](SecTransaction& store, std::int64_t number) {
      store.replace(number, entryOf(account, "").attributes, entryOf(account, "new password").secret.clone());
    });
  }

  void remove(std::size_t account) override {
    changeFound(account, [](SecTransaction& store, std::int64_t number) { store.remove(number); });
  }

  std::shared_ptr<SecFileStorage> storage() { return storage_; }

  void run(SecStorage::Access access, const SecStorage::Work& work) {
    if (openedPerCall_) open();
    require(storage_->transact(access, work) == errSecSuccess);
  }

 private:
  void open() {
    const SecFilePlace place{folder_ + "/data/credentials.store", folder_ + "/keys", true};
    std::unique_ptr<SecFileStorage> storage;
    require(SecFileStorage::open(place, SecFileStorage::Missing::make, storage) == errSecSuccess);
    storage_ = std::move(storage);
  }

  void change(const SecStorage::Work& work) { run(SecStorage::Access::change, work); }

  template <class Action>
  void changeFound(std::size_t account, Action action) {
    change([&](SecTransaction& store) {
      std::int64_t number = 0;
      store.find({entryOf(account, "").attributes}, SecSecrets::skip, [&](const SecRow& row) {
        number = row.number;
        return false;
      });
      action(store, number);
    });
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
    require(SecItemCopyMatching(query, &entries) == errSecSuccess);
    return entries->count();
  };
  return {rows, list};
}
