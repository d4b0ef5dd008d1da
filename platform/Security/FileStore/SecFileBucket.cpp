#include <Security/FileStore/SecFileBucket.h>

#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileRecord.h>

namespace {

constexpr std::size_t lineSize = sizeof(SecFileIdentity) + 2 * sizeof(std::int64_t) + sizeof(SecTag);
/// So that the size of a bucket shows little of how many lines it has.
constexpr std::size_t paddingStep = 4 * lineSize;

SecFileRecord recordOf(std::uint8_t number) {
  return {SecFileRecordKind::bucket, secFirstBucketNumber + number};
}

SecBytes binding(const SecStoreID& store, std::uint8_t number) {
  SecByteWriter writer;
  return writer.raw("VXFoundation bucket").number(secFileFormat).raw(store).number(number).take();
}

SecFileLine takeLine(SecByteReader& reader) {
  SecFileLine line;
  for (auto* tag : {&line.identity.account, &line.identity.site, &line.identity.rest})
    *tag = reader.array<sizeof(SecFileIdentity::Tag)>();
  line.number = reader.number<std::int64_t>();
  line.order = reader.number<std::int64_t>();
  line.tag = reader.array<sizeof(SecTag)>();
  return line;
}

SecBytes encode(const SecFileBucket& bucket) {
  SecByteWriter writer;
  writer.reserve((bucket.lines.size() + 4) * lineSize);
  for (const SecFileLine& line : bucket.lines) {
    writer.raw(line.identity.account).raw(line.identity.site).raw(line.identity.rest);
    writer.number(line.number).number(line.order).raw(line.tag);
  }
  return writer.padTo(paddingStep).take();
}

}  // namespace

SecFileBucket secOpenBucket(const SecFileKeys& keys, const SecStoreID& store, std::uint8_t number,
                            SecView content) {
  SecFileBucket bucket;
  if (content.empty()) return bucket;
  const SecSecret plaintext = secOpen(keys.index(), binding(store, number), content);
  SecByteReader reader(plaintext.bytes());
  while (!reader.rest().empty()) {
    const SecFileLine line = takeLine(reader);
    if (line.number != 0) bucket.lines.push_back(line);  // what has no number is padding
  }
  bucket.tag = secBoxTag(content);
  return bucket;
}

SecFileBucket secReadBucket(const SecFileContext& context, std::uint8_t number) {
  return secOpenBucket(context.keys, context.store, number,
                       secReadRecord(context.database, recordOf(number)));
}

void secWriteBucket(const SecFileContext& context, std::uint8_t number, SecFileBucket& bucket) {
  if (bucket.lines.empty()) {
    constexpr SecTag none{};
    if (bucket.tag != none) secRemoveRecord(context.database, recordOf(number));
    bucket.tag = none;
    return;
  }
  const SecBytes box = secSeal(context.keys.index(), binding(context.store, number), encode(bucket));
  secWriteRecord(context.database, recordOf(number), box);
  bucket.tag = secBoxTag(box);
}
