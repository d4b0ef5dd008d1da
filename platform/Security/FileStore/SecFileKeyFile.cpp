#include <Security/FileStore/SecFileKeyFile.h>

#include <Security/FileStore/SecFileSystem.h>

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
