#include <Security/FileStore/SecFileHeader.h>

#include <algorithm>

#include <Security/FileStore/SecFileFormat.h>

static_assert(3 * sizeof(SecTag) + 8 + secMostSlots * secSlotSize + sizeof(SecDigest) <= secHeaderSize);
static_assert(2 * secHeaderSize > secFilePageSize);

SecBytes secEncodeHeader(const SecFileHeader& header) {
  secRequire(header.slots.size() <= secMostSlots, errSecParam);
  SecByteWriter writer;
  writer.number(secFileFormat).raw(header.store).raw(header.keyID).raw(header.fileNumber);
  writer.number(static_cast<std::uint32_t>(header.slots.size()));
  for (const SecFileSlot& slot : header.slots) secPutSlot(writer, slot);
  writer.padTo(secHeaderSize - sizeof(SecDigest));
  return writer.raw(secHash(writer.bytes())).take();
}

SecDigest secHeaderDigest(SecView content) {
  secRequire(content.size() == secHeaderSize, errSecDecode);
  return SecByteReader(content.last(sizeof(SecDigest))).array<sizeof(SecDigest)>();
}

SecFileHeader secDecodeHeader(SecView content) {
  const SecDigest digest = secHeaderDigest(content);
  const SecView body = content.first(secHeaderSize - sizeof(SecDigest));
  secRequire(secHash(body) == digest, errSecDecode);
  SecByteReader reader(body);
  secRequire(reader.number<std::uint32_t>() == secFileFormat, errSecDecode);
  SecFileHeader header;
  for (auto* number : {&header.store, &header.keyID, &header.fileNumber})
    *number = reader.array<sizeof(SecTag)>();
  const auto slots = reader.number<std::uint32_t>();
  secRequire(slots <= secMostSlots, errSecDecode);
  header.slots.resize(slots);
  for (SecFileSlot& slot : header.slots) slot = secTakeSlot(reader);
  return header;
}

SecDigest secWriteHeader(SecFileDatabase& database, const SecFileHeader& header) {
  const SecBytes content = secEncodeHeader(header);
  for (const std::int64_t number : secHeaderNumbers)
    secWriteRecord(database, {SecFileRecordKind::header, number}, content);
  return secHeaderDigest(content);
}
