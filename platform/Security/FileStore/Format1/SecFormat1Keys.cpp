#include <Security/FileStore/Format1/SecFormat1Keys.h>

#include <Security/FileStore/SecFileFormat.h>

namespace {

SecByteWriter start(const SecFormat1Slot& slot, const SecStoreID& store) {
  SecByteWriter writer;
  writer.raw("VXFoundation slot").number(secFileFormat1).raw(store);
  writer.number(static_cast<std::uint8_t>(slot.protection));
  writer.number(slot.cost.logN).number(slot.cost.r).number(slot.cost.p).raw(slot.salt);
  return writer;
}

bool isKnown(const SecFormat1Slot& slot) {
  if (slot.protection == SecFileProtection::keyFile) return true;
  return slot.protection == SecFileProtection::passphrase && secIsReasonable(slot.cost);
}

SecSecret wrappingKey(const SecFormat1Slot& slot, SecView secret, const SecStoreID& store) {
  SecByteWriter salt;
  salt.raw(store).raw(slot.salt);
  return slot.protection == SecFileProtection::passphrase
             ? secStretch(secret, salt.bytes(), slot.cost)
             : secDeriveKey(secret, salt.bytes(), "VXFoundation key file");
}

SecSecret openDataKey(const SecFormat1Slot& slot, SecView secret, const SecStoreID& store) {
  const SecSecret key = wrappingKey(slot, secret, store);
  try {
    return secOpen(key.bytes(), start(slot, store).bytes(), slot.wrapped);
  } catch (const SecFailure& failure) {
    // The slot's own hash was right, so a box that does not open has another key.
    throw SecFailure{failure.status == errSecDecode ? errSecAuthFailed : failure.status};
  }
}

}  // namespace

SecFormat1Slot secDecodeFormat1Slot(SecView bytes, const SecStoreID& store) {
  SecByteReader reader(bytes);
  SecFormat1Slot slot;
  slot.protection = static_cast<SecFileProtection>(reader.number<std::uint8_t>());
  slot.cost.logN = reader.number<std::uint8_t>();
  slot.cost.r = reader.number<std::uint8_t>();
  slot.cost.p = reader.number<std::uint8_t>();
  slot.salt = reader.array<sizeof(SecTag)>();
  const SecView wrapped = reader.raw(secKeySize + secBoxOverhead);
  slot.wrapped.assign(wrapped.begin(), wrapped.end());
  secRequire(secSame(reader.rest(), secHash(start(slot, store).raw(wrapped).bytes())), errSecDecode);
  secRequire(isKnown(slot), errSecDecode);
  return slot;
}

SecFormat1Keys secOpenFormat1Slot(const SecFormat1Slot& slot, SecView secret, const SecStoreID& store) {
  const SecSecret dataKey = openDataKey(slot, secret, store);
  return {secDeriveKey(dataKey.bytes(), store, "VXFoundation item key"),
          secDeriveKey(dataKey.bytes(), store, "VXFoundation seal key")};
}

std::string secFormat1KeyFileName(const SecStoreID& store) { return secHexadecimal(store) + ".key"; }
