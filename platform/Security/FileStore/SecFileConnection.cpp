#include <Security/FileStore/SecFileConnection.h>

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

}  // namespace

SecFileConnection::SecFileConnection(std::string path, std::chrono::milliseconds waitLimit)
    : path_(std::move(path)),
      process_(::getpid()),
      file_(judge(path_)),
      database_(path_, waitLimit),
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
