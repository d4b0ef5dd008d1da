#include "Security/SecFileEntries.h"

#include "Security/SecFileRow.h"

namespace {

constexpr std::size_t largestBody = std::size_t{32} << 20;

SecTag stampOf(SecView body) {
  secRequire(body.size() >= secBoxOverhead, errSecDecode);
  return SecByteReader(body.last(sizeof(SecTag))).array<sizeof(SecTag)>();
}

SecBytes associatedData(const SecFileContext& context, const SecFileIdentity& identity, std::int64_t number) {
  SecByteWriter writer;
  writer.raw("VXFoundation entry").number(secFileFormat).raw(context.store).number(number);
  return writer.raw(secIdentityBytes(identity)).take();
}

}  // namespace

SecFileLine secLineFrom(const SecFileDatabase::Statement& row) {
  const SecView stamp = row.blob(3);
  secRequire(stamp.size() == sizeof(SecTag), errSecDecode);
  return {secIdentityFrom(row.blob(1)), row.integer(2), SecByteReader(stamp).array<sizeof(SecTag)>()};
}

SecEntry secReadEntry(const SecFileContext& context, const SecFileLine& line) {
  auto row = context.database.use("SELECT body FROM entry WHERE number=?");
  row.bind(line.number);
  secRequire(row.step(), errSecDecode);
  const SecView body = row.blob(0);
  secRequire(secSame(stampOf(body), line.stamp), errSecDecode);
  const SecBytes associated = associatedData(context, line.identity, line.number);
  return secDecodeEntry(secOpen(context.keys.item(), associated, body).bytes());
}

SecFileLine secWriteEntry(const SecFileContext& context, const SecFileIdentity& identity, std::int64_t number,
                          const SecEntry& entry) {
  const SecSecretWriter content = secEncodeEntry(entry);
  secRequire(content.bytes().size() <= largestBody, errSecDataTooLarge);
  const SecBytes associated = associatedData(context, identity, number);
  const SecBytes body = secSeal(context.keys.item(), associated, content.bytes());
  context.database.use("INSERT INTO entry VALUES(?,?)").bind(number).bind(body).run();
  return {identity, number, stampOf(body)};
}
