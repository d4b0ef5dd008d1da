#include <Security/FileStore/SecFileEntries.h>

#include <Security/FileStore/SecFileEntryCoding.h>

namespace {

constexpr std::size_t largestBody = std::size_t{32} << 20;

SecTag stampOf(SecView body) {
  secRequire(body.size() >= secBoxOverhead, errSecDecode);
  return SecByteReader(body.last(sizeof(SecTag))).array<sizeof(SecTag)>();
}

SecBytes associatedData(const SecFileContext& context, const SecFileIdentity& identity, std::int64_t number) {
  SecByteWriter writer;
  writer.raw("VXFoundation entry").number(secFileFormat).raw(context.store).number(number);
  return secPutIdentity(writer, identity).take();
}

}  // namespace

SecBytes secReadBucket(const SecFileContext& context, std::uint8_t bucket) {
  auto row = context.database.use("SELECT lines FROM directory WHERE bucket=?");
  row.bind(std::int64_t{bucket});
  if (!row.step()) return {};
  return {row.blob(0).begin(), row.blob(0).end()};
}

void secWriteBucket(const SecFileContext& context, std::uint8_t bucket, SecView bytes) {
  context.database.use("REPLACE INTO directory VALUES(?,?)").bind(std::int64_t{bucket}).bind(bytes).run();
}

SecEntry secReadEntry(const SecFileContext& context, const SecFileLine& line) {
  auto row = context.database.use("SELECT body FROM entry WHERE number=?");
  row.bind(line.number);
  row.requireRow();
  const SecView body = row.blob(0);
  secRequire(secSame(stampOf(body), line.stamp), errSecDecode);
  const SecBytes associated = associatedData(context, line.identity, line.number);
  return secDecodeEntry(secOpen(context.keys.item(), associated, body).bytes());
}

SecFileLine secWriteEntry(const SecFileContext& context, const SecFileIdentity& identity, std::int64_t number,
                          const SecEntry& entry) {
  const SecSecretWriter content = secEncodeEntry(entry);
  secRequire(content.bytes().size() <= largestBody, errSecDataTooLarge);
  context.database.requireRoom(content.bytes().size());
  const SecBytes associated = associatedData(context, identity, number);
  const SecBytes body = secSeal(context.keys.item(), associated, content.bytes());
  context.database.use("INSERT INTO entry VALUES(?,?)").bind(number).bind(body).run();
  return {identity, number, stampOf(body)};
}

void secRemoveEntry(const SecFileContext& context, std::int64_t number) {
  context.database.use("DELETE FROM entry WHERE number=?").bind(number).run();
  secRequire(context.database.changes() == 1, errSecDecode);
}

std::uint64_t secCountEntries(SecFileDatabase& database) {
  auto row = database.use("SELECT count(*) FROM entry");
  row.requireRow();
  return static_cast<std::uint64_t>(row.integer(0));
}
