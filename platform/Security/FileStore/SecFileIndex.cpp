#include <Security/FileStore/SecFileIndex.h>

#include <Security/SecIdentity.h>

namespace {

constexpr std::size_t lineSize = sizeof(SecFileIdentity) + sizeof(std::int64_t) + sizeof(SecTag);

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

SecByteWriter& secPutIdentity(SecByteWriter& writer, const SecFileIdentity& identity) {
  return writer.raw(identity.account).raw(identity.site).raw(identity.rest);
}

SecFileQuery::SecFileQuery(SecView indexKey, const SecQuery& query)
    : identity_(secFileIdentity(indexKey, query.attributes)),
      account_(query.exactly || query.attributes.account.has_value()),
      site_(query.exactly || siteOf(query.attributes).has_value()),
      rest_(query.exactly || isGeneric(query.attributes) ||
            (query.attributes.path && query.attributes.port && query.attributes.protocol)) {}

std::optional<std::uint8_t> SecFileQuery::bucket() const {
  if (!account_ || !site_) return std::nullopt;
  return identity_.bucket();
}

bool SecFileQuery::mayMatch(const SecFileIdentity& identity) const {
  return (!account_ || identity.account == identity_.account) &&
         (!site_ || identity.site == identity_.site) && (!rest_ || identity.rest == identity_.rest);
}

SecBytes secEncodeBucket(const SecFileBucket& lines) {
  SecByteWriter writer;
  writer.reserve(lines.size() * lineSize);
  for (const SecFileLine& line : lines)
    secPutIdentity(writer, line.identity).number(line.number).raw(line.stamp);
  return writer.take();
}

SecFileBucket secDecodeBucket(SecView bytes) {
  SecByteReader reader(bytes);
  SecFileBucket lines(bytes.size() / lineSize);
  for (SecFileLine& line : lines) {
    for (SecTag* tag : {&line.identity.account, &line.identity.site, &line.identity.rest})
      *tag = reader.array<sizeof(SecTag)>();
    line.number = reader.number<std::int64_t>();
    line.stamp = reader.array<sizeof(SecTag)>();
  }
  secRequire(reader.rest().empty(), errSecDecode);
  return lines;
}

SecTag secBucketSum(SecView sealKey, std::uint8_t bucket, SecView bytes) {
  if (bytes.empty()) return {};
  SecByteWriter message;
  message.raw("VXFoundation bucket").number(bucket).raw(bytes);
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
