#include <Security/FileStore/SecFileNote.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <Security/FileStore/SecFileCrypto.h>

namespace {

constexpr std::string_view magic = "VXFoundation note 2\n";
constexpr std::size_t size = magic.size() + sizeof(std::uint64_t) + sizeof(SecDigest);

std::string nameFor(const std::string& path, const SecStoreID& store) {
  SecByteWriter identity;
  identity.raw(store).raw(path);
  return secHexadecimal(SecView(secHash(identity.bytes())).first(sizeof(SecTag))) + ".seen";
}

}  // namespace

SecFileNote::SecFileNote(const std::string& path, const SecStoreID& store) : name_(nameFor(path, store)) {}

SecBytes SecFileNote::encode(SecView noteKey, std::uint64_t changes) const {
  SecByteWriter writer;
  writer.raw(magic).number(changes);
  SecByteWriter message;
  message.raw(name_).raw(writer.bytes());
  return writer.raw(secAuthenticate(noteKey, message.bytes())).take();
}

std::optional<std::uint64_t> SecFileNote::read(const SecFileFolder& folder, SecView noteKey) const {
  try {
    const auto content = folder.read(name_, size + 1);
    if (!content || content->bytes().size() != size) return std::nullopt;
    const auto changes = SecByteReader(content->bytes().subspan(magic.size())).number<std::uint64_t>();
    if (!secSame(content->bytes(), encode(noteKey, changes))) return std::nullopt;
    return changes;
  } catch (const SecFailure&) {
    return std::nullopt;
  }
}

void SecFileNote::write(const SecFileFolder& folder, SecView noteKey, std::uint64_t changes) const {
  const SecBytes content = encode(noteKey, changes);
  const SecFileDescriptor file = folder.open(name_, O_WRONLY | O_CREAT);
  secCall(::fchmod(file.number(), 0600));
  secCall(::pwrite64(file.number(), content.data(), content.size(), 0));
}
