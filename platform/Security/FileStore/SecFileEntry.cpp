#include <Security/FileStore/SecFileEntry.h>

#include <algorithm>
#include <limits>

#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileRecord.h>

namespace {

constexpr std::size_t largestContent = std::size_t{32} << 20;

SecFileRecord recordOf(std::int64_t number) { return {SecFileRecordKind::entry, number}; }

SecBytes binding(const SecFileEntryPlace& place, std::string_view box) {
  SecByteWriter writer;
  return writer.raw(box).number(secFileFormat).raw(place.store).number(place.number).take();
}

SecBytes headBinding(const SecFileEntryPlace& place) { return binding(place, "VXFoundation entry"); }
SecBytes secretBinding(const SecFileEntryPlace& place) { return binding(place, "VXFoundation secret"); }

}  // namespace

SecFileEntryBoxes::SecFileEntryBoxes(SecView content) {
  SecByteReader reader(content);
  head = reader.raw(reader.number<std::uint32_t>());
  secret = reader.rest();
}

SecFileEntryHead secOpenHead(const SecFileEntryPlace& place, const SecFileEntryBoxes& boxes) {
  return secDecodeHead(secOpen(place.keys.item(), headBinding(place), boxes.head).bytes());
}

SecSecret secOpenSecret(const SecFileEntryPlace& place, const SecFileEntryHead& head,
                        const SecFileEntryBoxes& boxes) {
  secRequire(secBoxTag(boxes.secret) == head.secret, errSecDecode);
  return secDecodeSecret(secOpen(place.keys.item(), secretBinding(place), boxes.secret).bytes());
}

SecBytes secSealEntry(const SecFileEntryPlace& place, SecFileEntryHead& head, SecView secret) {
  secRequire(secret.size() <= largestContent, errSecDataTooLarge);
  const SecBytes box = secSeal(place.keys.item(), secretBinding(place), secEncodeSecret(secret).bytes());
  head.secret = secBoxTag(box);
  return secSealHead(place, head, box);
}

SecBytes secSealHead(const SecFileEntryPlace& place, const SecFileEntryHead& head, SecView secretBox) {
  const SecSecretWriter plaintext = secEncodeHead(head);
  secRequire(plaintext.bytes().size() + secretBox.size() <= largestContent, errSecDataTooLarge);
  const SecBytes box = secSeal(place.keys.item(), headBinding(place), plaintext.bytes());
  SecByteWriter content;
  content.reserve(sizeof(std::uint32_t) + box.size() + secretBox.size());
  return content.number(static_cast<std::uint32_t>(box.size())).raw(box).raw(secretBox).take();
}

SecBytes secReadEntry(const SecFileContext& context, const SecFileLine& line) {
  SecBytes content = secReadRecord(context.database, recordOf(line.number));
  secRequire(secSame(secBoxTag(SecFileEntryBoxes(content).head), line.tag), errSecDecode);
  return content;
}

SecFileLine secWriteEntry(const SecFileContext& context, std::int64_t number, const SecFileEntryHead& head,
                          SecView content) {
  context.database.requireRoom(content.size());
  secWriteRecord(context.database, recordOf(number), content);
  return {secFileIdentity(context.keys.index(), head.attributes), number, head.order,
          secBoxTag(SecFileEntryBoxes(content).head)};
}

std::size_t secRemoveEntry(const SecFileContext& context, std::int64_t number) {
  std::size_t size = 0;
  {
    auto row = context.database.use("SELECT length(body) FROM record WHERE number=?");
    row.bind(number).requireRow();
    size = static_cast<std::size_t>(row.integer(0));
  }
  secRemoveRecord(context.database, recordOf(number));
  return size;
}

std::uint64_t secCountEntries(SecFileDatabase& database) {
  auto row = database.use("SELECT count(*) FROM record WHERE number>=?");
  row.bind(secFirstEntryNumber).requireRow();
  return static_cast<std::uint64_t>(row.integer(0));
}

std::int64_t secNewEntryNumber() {
  const auto random = secRandomBytes<sizeof(std::int64_t)>();
  const auto number = SecByteReader(random).number<std::int64_t>();
  return std::max(number & std::numeric_limits<std::int64_t>::max(), secFirstEntryNumber);
}
