#include <Security/FileStore/SecFileKeyFile.h>

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <climits>

#include <Security/FileStore/SecFileDraft.h>

namespace {

constexpr std::string_view magic = "VXFoundation key file 2\n";
constexpr std::size_t largestFile = PATH_MAX + 256;

SecSecretWriter encode(SecView secret, const SecFileOwner& owner) {
  SecSecretWriter writer;
  writer.reserve(largestFile);
  writer.raw(magic).raw(secret);
  writer.number(std::uint64_t{owner.file.device}).number(std::uint64_t{owner.file.inode});
  writer.number(static_cast<std::uint32_t>(owner.path.size())).raw(owner.path);
  writer.raw(secHash(writer.bytes()));
  return writer;
}

SecFileKey decode(SecView content) {
  secRequire(content.size() > sizeof(SecDigest), errSecDecode);
  const SecView body = content.first(content.size() - sizeof(SecDigest));
  secRequire(secSame(secHash(body), content.last(sizeof(SecDigest))), errSecDecode);
  SecByteReader reader(body);
  secRequire(secSame(reader.raw(magic.size()), secBytesOf(magic)), errSecDecode);
  SecFileKey key{SecSecret(reader.raw(secKeySize)), {}};
  key.owner.file.device = reader.number<std::uint64_t>();
  key.owner.file.inode = reader.number<std::uint64_t>();
  const SecView path = reader.raw(reader.number<std::uint32_t>());
  key.owner.path.assign(reinterpret_cast<const char*>(path.data()), path.size());
  return key;
}

}  // namespace

std::string secKeyFileName(const SecTag& slot) { return secHexadecimal(slot) + ".key"; }

std::optional<SecFileKey> secReadKeyFile(const SecFileFolder& folder, const std::string& name) {
  const auto content = folder.read(name, largestFile);
  if (!content) return std::nullopt;
  try {
    return decode(content->bytes());
  } catch (const SecFailure& failure) {
    throw SecFailure{failure.status == errSecDecode ? errSecAuthFailed : failure.status};
  }
}

SecFileKeyLock::SecFileKeyLock(const SecFileFolder& folder, Purpose purpose)
    : folder_(::openat(folder.descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  secCall(folder_.number());
  const int operation = purpose == Purpose::make ? LOCK_SH : LOCK_EX | LOCK_NB;
  const bool locked = ::flock(folder_.number(), operation) == 0;
  secRequire(locked || errno != EWOULDBLOCK, errSecBusy);
}

SecFileNewKeyFile::SecFileNewKeyFile(const SecFileFolder& folder, const SecFileOwner& owner)
    : folder_(folder), lock_(folder, SecFileKeyLock::Purpose::make) {
  const SecSecret secret = secRandomSecret(secKeySize);
  slotKey_ = secDeriveSlotKey(slot_, secret.bytes());
  const SecSecretWriter content = encode(secret.bytes(), owner);
  secRequire(secPublishFile(folder, secKeyFileName(slot_.number), content.bytes()), errSecIO);
}

SecFileNewKeyFile::~SecFileNewKeyFile() {
  if (!kept_) static_cast<void>(secStatusOf([&] { folder_.erase(secKeyFileName(slot_.number)); }));
}
