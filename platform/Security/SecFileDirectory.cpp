#include "Security/SecFileDirectory.h"

#include "Security/SecIdentity.h"

namespace {

bool isGeneric(const SecAttributes& attributes) {
  return attributes.itemClass == SecItemClass::genericPassword;
}

const std::optional<SecText>& siteOf(const SecAttributes& attributes) {
  return isGeneric(attributes) ? attributes.service : attributes.server;
}

SecSecretWriter start(std::string_view part, const SecAttributes& identity) {
  SecSecretWriter writer;
  writer.raw(part).number(static_cast<std::uint8_t>(identity.itemClass));
  return writer;
}

SecTag accountTag(SecView key, const SecAttributes& identity) {
  return secAuthenticateShort(key, start("account", identity).text(identity.account).bytes());
}

SecTag siteTag(SecView key, const SecAttributes& identity) {
  return secAuthenticateShort(key, start("site", identity).text(siteOf(identity)).bytes());
}

SecTag restTag(SecView key, const SecAttributes& identity) {
  SecSecretWriter writer = start("rest", identity);
  if (!isGeneric(identity))
    writer.text(identity.path).text(identity.protocol).number(identity.port.value_or(0));
  return secAuthenticateShort(key, writer.bytes());
}

SecByteWriter sealBody(const SecFileSeal& seal) {
  SecByteWriter writer;
  writer.number(seal.next).number(seal.count);
  for (const SecTag& sum : seal.sums) writer.raw(sum);
  return writer;
}

SecDigest sealSum(SecView body, SecView key, const SecStoreID& store) {
  SecByteWriter message;
  message.raw("VXFoundation seal").number(secFileFormat).raw(store).raw(body);
  return secAuthenticate(key, message.bytes());
}

}  // namespace

SecFileIdentity secFileIdentity(SecView indexKey, const SecAttributes& attributes) {
  const SecAttributes identity = secIdentity(attributes);
  return {accountTag(indexKey, identity), siteTag(indexKey, identity), restTag(indexKey, identity)};
}

std::array<std::byte, 48> secIdentityBytes(const SecFileIdentity& identity) {
  std::array<std::byte, 48> bytes;
  auto end = bytes.begin();
  for (const SecTag* tag : {&identity.account, &identity.site, &identity.rest})
    end = std::copy(tag->begin(), tag->end(), end);
  return bytes;
}

SecFileIdentity secIdentityFrom(SecView bytes) {
  SecByteReader reader(bytes);
  SecFileIdentity identity;
  for (SecTag* tag : {&identity.account, &identity.site, &identity.rest})
    *tag = reader.array<sizeof(SecTag)>();
  secRequire(reader.rest().empty(), errSecDecode);
  return identity;
}

SecFileQuery::SecFileQuery(SecView indexKey, const SecAttributes& query)
    : identity_(secFileIdentity(indexKey, query)),
      account_(query.account.has_value()),
      site_(siteOf(query).has_value()),
      rest_(isGeneric(query) || (query.path && query.port && query.protocol)) {}

std::optional<std::uint8_t> SecFileQuery::bucket() const {
  if (!account_ || !site_) return std::nullopt;
  return identity_.bucket();
}

bool SecFileQuery::mayMatch(const SecFileIdentity& identity) const {
  return (!account_ || identity.account == identity_.account) &&
         (!site_ || identity.site == identity_.site) && (!rest_ || identity.rest == identity_.rest);
}

SecTag secBucketSum(SecView sealKey, std::uint8_t bucket, const SecFileBucket& lines) {
  if (lines.empty()) return {};
  SecByteWriter message;
  message.reserve(64 + lines.size() * 72).raw("VXFoundation bucket").number(bucket);
  for (const SecFileLine& line : lines)
    message.raw(secIdentityBytes(line.identity)).number(line.number).raw(line.stamp);
  return secAuthenticateShort(sealKey, message.bytes());
}

SecBytes secEncodeSeal(const SecFileSeal& seal, SecView sealKey, const SecStoreID& store) {
  SecByteWriter body = sealBody(seal);
  return body.raw(sealSum(body.bytes(), sealKey, store)).take();
}

SecFileSeal secDecodeSeal(SecView bytes, SecView sealKey, const SecStoreID& store) {
  secRequire(bytes.size() > sizeof(SecDigest), errSecDecode);
  const SecView body = bytes.first(bytes.size() - sizeof(SecDigest));
  secRequire(secSame(bytes.last(sizeof(SecDigest)), sealSum(body, sealKey, store)), errSecDecode);
  SecByteReader reader(body);
  SecFileSeal seal;
  seal.next = reader.number<std::int64_t>();
  seal.count = reader.number<std::uint64_t>();
  for (SecTag& sum : seal.sums) sum = reader.array<sizeof(SecTag)>();
  secRequire(reader.rest().empty(), errSecDecode);
  return seal;
}
