#include <Security/FileStore/SecFileKeys.h>

#include <utility>

#include <Security/FileStore/SecFileFormat.h>

namespace {

constexpr SecCost leastCost{14, 8, 1};
constexpr SecCost mostCost{18, 8, 4};

bool within(std::uint8_t least, std::uint8_t value, std::uint8_t most) {
  return least <= value && value <= most;
}

bool isReasonable(SecCost cost) {
  return within(leastCost.logN, cost.logN, mostCost.logN) && within(leastCost.r, cost.r, mostCost.r) &&
         within(leastCost.p, cost.p, mostCost.p);
}

SecByteWriter start(const SecFileSlot& slot, const SecStoreID& store) {
  SecByteWriter writer;
  writer.raw("VXFoundation slot").number(secFileFormat).raw(store);
  writer.number(static_cast<std::uint8_t>(slot.protection));
  writer.number(slot.cost.logN).number(slot.cost.r).number(slot.cost.p).raw(slot.salt);
  return writer;
}

SecSecret wrappingKey(const SecFileSlot& slot, SecView credential, const SecStoreID& store) {
  SecByteWriter salt;
  salt.raw(store).raw(slot.salt);
  return slot.protection == SecFileProtection::passphrase
             ? secStretch(credential, salt.bytes(), slot.cost)
             : secDeriveKey(credential, salt.bytes(), "VXFoundation key file");
}

SecDigest hashOf(const SecFileSlot& slot, const SecStoreID& store) {
  return secHash(start(slot, store).raw(slot.wrapped).bytes());
}

}  // namespace

SecFileKeys::SecFileKeys(SecSecret dataKey, const SecStoreID& store)
    : data_(std::move(dataKey)),
      item_(secDeriveKey(data(), store, "VXFoundation item key")),
      index_(secDeriveKey(data(), store, "VXFoundation index key")),
      seal_(secDeriveKey(data(), store, "VXFoundation seal key")) {}

SecFileSlot secWrapKey(SecFileProtection protection, SecView credential, const SecStoreID& store,
                       SecView dataKey) {
  SecFileSlot slot{protection, {}, secRandomBytes<sizeof(SecTag)>(), {}};
  const SecSecret key = wrappingKey(slot, credential, store);
  slot.wrapped = secSeal(key.bytes(), start(slot, store).bytes(), dataKey);
  return slot;
}

SecSecret secUnwrapKey(const SecFileSlot& slot, SecView credential, const SecStoreID& store) {
  const SecSecret key = wrappingKey(slot, credential, store);
  try {
    return secOpen(key.bytes(), start(slot, store).bytes(), slot.wrapped);
  } catch (const SecFailure& failure) {
    // The slot's own hash held when it was read, so what does not open here has another key.
    throw SecFailure{failure.status == errSecDecode ? errSecAuthFailed : failure.status};
  }
}

SecBytes secEncodeSlot(const SecFileSlot& slot, const SecStoreID& store) {
  SecByteWriter writer;
  writer.number(static_cast<std::uint8_t>(slot.protection));
  writer.number(slot.cost.logN).number(slot.cost.r).number(slot.cost.p).raw(slot.salt);
  writer.raw(slot.wrapped).raw(hashOf(slot, store));
  return writer.take();
}

SecFileSlot secDecodeSlot(SecView bytes, const SecStoreID& store) {
  SecByteReader reader(bytes);
  SecFileSlot slot;
  slot.protection = static_cast<SecFileProtection>(reader.number<std::uint8_t>());
  slot.cost.logN = reader.number<std::uint8_t>();
  slot.cost.r = reader.number<std::uint8_t>();
  slot.cost.p = reader.number<std::uint8_t>();
  slot.salt = reader.array<sizeof(SecTag)>();
  const SecView wrapped = reader.raw(secKeySize + secBoxOverhead);
  slot.wrapped.assign(wrapped.begin(), wrapped.end());
  secRequire(secSame(reader.rest(), hashOf(slot, store)), errSecDecode);
  secRequire(
      slot.protection == SecFileProtection::keyFile || slot.protection == SecFileProtection::passphrase,
      errSecDecode);
  secRequire(slot.protection == SecFileProtection::keyFile || isReasonable(slot.cost), errSecDecode);
  return slot;
}
