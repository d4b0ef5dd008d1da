#include <Security/SecFileConnection.h>

#include <unistd.h>

namespace {

SecFileNumber judge(const std::string& path) {
  // A journal that is not ours must not be played back into the store.
  secJudgeFile(path + "-journal");
  const auto file = secJudgeFile(path);
  secRequire(file.has_value(), errSecNoSuchKeychain);
  return *file;
}

SecStoreID decodeID(SecView bytes) {
  secRequire(bytes.size() == sizeof(SecStoreID), errSecDecode);
  return SecByteReader(bytes).array<sizeof(SecStoreID)>();
}

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

SecFileConnection::SecFileConnection(std::string path)
    : path_(std::move(path)),
      process_(::getpid()),
      file_(judge(path_)),
      database_(path_),
      content_(readContent()) {
  secRequire(isCurrent(), errSecBusy);
}

bool SecFileConnection::isOurs() const { return process_ == ::getpid(); }

bool SecFileConnection::isCurrent() const { return judge(path_) == file_; }

SecFileConnection::Content SecFileConnection::readContent() {
  const SecFileUnitOfWork reading(database_, false);
  database_.checkSchema();
  auto row = database_.storeRow();
  row.requireRow();
  const SecStoreID store = decodeID(row.blob(0));
  const SecFileSlot slot = secDecodeSlot(row.blob(1), store);
  secRequire(!row.step(), errSecDecode);
  return {store, slot};
}

SecFileSlot SecFileConnection::readSlot() {
  auto row = database_.storeRow();
  row.requireRow();
  return secDecodeSlot(row.blob(1), store());
}

void SecFileConnection::writeSlot(const SecFileSlot& slot) {
  const SecBytes wrapped = secEncodeSlot(slot, store());
  database_.use("UPDATE store SET slot=?").bind(wrapped).run();
}

std::string secKeyFilePath(const std::string& keyFolder, const SecStoreID& store) {
  constexpr char digits[] = "0123456789abcdef";
  std::string name;
  for (const std::byte byte : store) {
    name += digits[std::to_integer<unsigned>(byte >> 4)];
    name += digits[std::to_integer<unsigned>(byte & std::byte{15})];
  }
  return keyFolder + "/" + name + ".key";
}

SecSecret secReadKeyFile(const std::string& keyFolder, const SecStoreID& store) {
  secRequire(secJudgeFolder(keyFolder), errSecDataNotAvailable);
  auto key = secReadPrivateFile(secKeyFilePath(keyFolder, store), secKeySize + 1);
  secRequire(key.has_value(), errSecDataNotAvailable);
  secRequire(key->bytes().size() == secKeySize, errSecAuthFailed);
  return std::move(*key);
}

SecSecret secMakeKeyFile(const std::string& keyFolder, const SecStoreID& store) {
  SecSecret key(secKeySize);
  secFillRandom(key.writableBytes());
  secMakePrivateFolder(keyFolder);
  secRequire(secJudgeFolder(keyFolder), errSecIO);
  const std::string path = secKeyFilePath(keyFolder, store);
  secRemoveFile(path);
  secRequire(secPublishFile(path, key.bytes()), errSecBusy);
  return key;
}

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
