#include <Security/FileStore/SecFileSeal.h>

#include <Security/FileStore/SecFileRecord.h>

namespace {

constexpr SecFileRecord record{SecFileRecordKind::seal, secSealNumber};

SecBytes binding(const SecFileKeys& keys, const SecStoreID& store) {
  SecByteWriter writer;
  return writer.raw("VXFoundation seal").number(secFileFormat).raw(store).raw(keys.id()).take();
}

}  // namespace

SecBytes secEncodeSeal(const SecFileSeal& seal, const SecFileKeys& keys, const SecStoreID& store) {
  SecSecretWriter writer;
  writer.reserve(sizeof(SecFileSeal));
  writer.number(seal.changes).number(seal.next).number(seal.entries).number(seal.size);
  writer.raw(seal.header).raw(seal.noteKey.bytes());
  for (const SecTag& tag : seal.buckets) writer.raw(tag);
  SecByteWriter content;
  return content.raw(keys.id()).raw(secSeal(keys.seal(), binding(keys, store), writer.bytes())).take();
}

SecFileSeal secDecodeSeal(SecView content, const SecFileKeys& keys, const SecStoreID& store) {
  SecByteReader outer(content);
  secRequire(outer.array<sizeof(SecTag)>() == keys.id(), errSecDecode);
  const SecSecret plaintext = secOpen(keys.seal(), binding(keys, store), outer.rest());
  SecByteReader reader(plaintext.bytes());
  SecFileSeal seal;
  seal.changes = reader.number<std::uint64_t>();
  seal.next = reader.number<std::int64_t>();
  seal.entries = reader.number<std::uint64_t>();
  seal.size = reader.number<std::uint64_t>();
  seal.header = reader.array<sizeof(SecDigest)>();
  seal.noteKey = SecSecret(reader.raw(secKeySize));
  for (SecTag& tag : seal.buckets) tag = reader.array<sizeof(SecTag)>();
  secRequire(reader.rest().empty(), errSecDecode);
  return seal;
}

SecFileSeal secReadSeal(const SecFileContext& context) {
  return secDecodeSeal(secReadRecord(context.database, record), context.keys, context.store);
}

void secWriteSeal(const SecFileContext& context, const SecFileSeal& seal) {
  secWriteRecord(context.database, record, secEncodeSeal(seal, context.keys, context.store));
}

SecFileBucket secBelieveBucket(const SecFileContext& context, const SecFileSeal& seal, std::uint8_t number) {
  SecFileBucket bucket = secReadBucket(context, number);
  secRequire(bucket.tag == seal.buckets[number], errSecDecode);
  return bucket;
}
