#include <Security/FileStore/SecFileCreation.h>

#include <unistd.h>

#include <Security/FileStore/SecFileDatabase.h>
#include <Security/FileStore/SecFileIndex.h>
#include <Security/FileStore/SecFileKeyFile.h>
#include <Security/FileStore/SecFileSystem.h>

namespace {

SecBytes emptyStore(const SecStoreID& store, const SecFileSlot& slot, const SecFileKeys& keys) {
  SecFileDatabase database;
  const SecBytes wrapped = secEncodeSlot(slot, store);
  const SecBytes seal = secEncodeSeal({}, keys.seal(), store);
  database.use("INSERT INTO store VALUES(1,?,?,?)").bind(store).bind(wrapped).bind(seal).run();
  return database.image();
}

/// Takes back the key of a store that did not come to be.
class KeyFileGuard {
 public:
  KeyFileGuard(const std::string& keyFile, const std::string& store) : keyFile_(keyFile), store_(store) {}
  KeyFileGuard(const KeyFileGuard&) = delete;
  KeyFileGuard& operator=(const KeyFileGuard&) = delete;
  ~KeyFileGuard() {
    // After an error the file may be there all the same: then its key has to stay.
    if (!published && (lost || ::access(store_.c_str(), F_OK) != 0)) ::unlink(keyFile_.c_str());
  }

  bool published = false;
  bool lost = false;

 private:
  const std::string& keyFile_;
  const std::string& store_;
};

}  // namespace

void secMakeStore(const std::string& path, const std::string& keyFolder) {
  const auto store = secRandomBytes<sizeof(SecStoreID)>();
  SecSecret dataKey(secKeySize);
  secFillRandom(dataKey.writableBytes());
  const SecFileKeys keys(std::move(dataKey), store);
  const std::string keyFile = secKeyFilePath(keyFolder, store);
  KeyFileGuard guard(keyFile, path);
  const SecSecret key = secMakeKeyFile(keyFolder, store);
  const SecFileSlot slot = secWrapKey(SecFileProtection::keyFile, key.bytes(), store, keys.data());
  guard.published = secPublishFile(path, emptyStore(store, slot, keys));
  guard.lost = !guard.published;
}
