#include <Security/FileStore/SecFileSlot.h>

#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileRecovery.h>

namespace {

SecByteWriter& putCost(SecByteWriter& writer, const SecFileSlot& slot) {
  return writer.number(static_cast<std::uint8_t>(slot.protection))
      .number(slot.cost.logN)
      .number(slot.cost.r)
      .number(slot.cost.p);
}

SecBytes pairBinding(const SecFileSlot& slot) {
  SecByteWriter writer;
  writer.raw("VXFoundation pair").number(secFileFormat);
  return putCost(writer, slot).raw(slot.number).take();
}

SecBytes keyBinding(std::string_view what, const SecFileSlot& slot, const SecTag& keyID) {
  SecByteWriter writer;
  return writer.raw(what).number(secFileFormat).raw(slot.number).raw(keyID).take();
}

SecBytes dataKeyBinding(const SecFileSlot& slot, const SecTag& keyID) {
  return keyBinding("VXFoundation data key", slot, keyID);
}

SecBytes publicHalfBinding(const SecFileSlot& slot, const SecTag& keyID) {
  return keyBinding("VXFoundation public half", slot, keyID);
}

/// Opens a box under the slot's key.
SecSecret openBox(SecView slotKey, SecView binding, SecView box) {
  try {
    return secOpen(slotKey, binding, box);
  } catch (const SecFailure& failure) {
    // The header's own hash was right, so a box that does not open has another key.
    throw SecFailure{failure.status == errSecDecode ? errSecAuthFailed : failure.status};
  }
}

SecBytes takeBox(SecByteReader& reader, std::size_t size, std::size_t used) {
  const SecView box = reader.raw(size).first(used);
  return {box.begin(), box.end()};
}

constexpr std::size_t pairSize = SecKeyPair::size + secBoxOverhead;
constexpr std::size_t publicHalfSize = sizeof(SecPublicKey) + secBoxOverhead;
constexpr std::size_t sealedKeySize = secKeySize + secSealedOverhead;
constexpr std::size_t keySize = secKeySize + secBoxOverhead;

}  // namespace

SecFileSlot secMakeSlot(SecFileProtection protection) {
  SecFileSlot slot;
  slot.protection = protection;
  slot.number = secRandomBytes<sizeof(SecTag)>();
  return slot;
}

SecSecret secDeriveSlotKey(const SecFileSlot& slot, SecView secret) {
  return slot.protection == SecFileProtection::passphrase
             ? secStretch(secMeantPassphrase(secret).bytes(), slot.number, slot.cost)
             : secDeriveKey(secret, slot.number, "VXFoundation slot key");
}

SecSecret secOpenSlot(const SecFileSlot& slot, SecView slotKey, const SecTag& keyID) {
  const SecBytes binding = dataKeyBinding(slot, keyID);
  if (!(slot.flags & secSlotIsStale)) return openBox(slotKey, binding, slot.dataKey);
  const SecKeyPair pair{openBox(slotKey, pairBinding(slot), slot.pair)};
  return secOpenSealed(pair, binding, slot.dataKey);
}

void secRenewSlot(SecFileSlot& slot, SecView slotKey, const SecFileKeys& keys) {
  const SecKeyPair pair = secMakeKeyPair();
  slot.flags &= ~secSlotIsStale;
  slot.pair = secSeal(slotKey, pairBinding(slot), pair.halves.bytes());
  slot.dataKey = secSeal(slotKey, dataKeyBinding(slot, keys.id()), keys.data());
  slot.publicHalf = secSeal(keys.slots(), publicHalfBinding(slot, keys.id()), pair.publicHalf());
}

void secResealSlot(SecFileSlot& slot, const SecFileKeys& former, const SecFileKeys& keys) {
  const SecSecret half = secOpen(former.slots(), publicHalfBinding(slot, former.id()), slot.publicHalf);
  slot.flags |= secSlotIsStale;
  slot.dataKey = secSealTo(half.bytes(), dataKeyBinding(slot, keys.id()), keys.data());
  slot.publicHalf = secSeal(keys.slots(), publicHalfBinding(slot, keys.id()), half.bytes());
}

SecByteWriter& secPutSlot(SecByteWriter& writer, const SecFileSlot& slot) {
  putCost(writer, slot).number(slot.flags).raw(slot.number);
  writer.raw(slot.pair).raw(slot.dataKey).raw(SecBytes(sealedKeySize - slot.dataKey.size()));
  return writer.raw(slot.publicHalf);
}

SecFileSlot secTakeSlot(SecByteReader& reader) {
  SecFileSlot slot;
  slot.protection = static_cast<SecFileProtection>(reader.number<std::uint8_t>());
  slot.cost.logN = reader.number<std::uint8_t>();
  slot.cost.r = reader.number<std::uint8_t>();
  slot.cost.p = reader.number<std::uint8_t>();
  slot.flags = reader.number<std::uint32_t>();
  secRequire(secIsReasonable(slot.cost), errSecDecode);
  slot.number = reader.array<sizeof(SecTag)>();
  const bool isStale = slot.flags & secSlotIsStale;
  slot.pair = takeBox(reader, pairSize, pairSize);
  slot.dataKey = takeBox(reader, sealedKeySize, isStale ? sealedKeySize : keySize);
  slot.publicHalf = takeBox(reader, publicHalfSize, publicHalfSize);
  return slot;
}
