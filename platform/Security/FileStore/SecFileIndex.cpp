#include <Security/FileStore/SecFileIndex.h>

#include <Security/FileStore/SecFileCrypto.h>
#include <Security/FileStore/SecFileFormat.h>
#include <Security/SecIdentity.h>

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

SecFileIdentity::Tag tag(SecView key, const SecSecretWriter& writer) {
  const SecDigest digest = secAuthenticate(key, writer.bytes());
  return SecByteReader(digest).array<sizeof(SecFileIdentity::Tag)>();
}

SecFileIdentity::Tag accountTag(SecView key, const SecAttributes& identity) {
  return tag(key, start("account", identity).text(identity.account));
}

SecFileIdentity::Tag siteTag(SecView key, const SecAttributes& identity) {
  return tag(key, start("site", identity).text(siteOf(identity)));
}

SecFileIdentity::Tag restTag(SecView key, const SecAttributes& identity) {
  SecSecretWriter writer = start("rest", identity);
  if (!isGeneric(identity))
    writer.text(identity.path).text(identity.protocol).number(identity.port.value_or(0));
  return tag(key, writer);
}

}  // namespace

std::uint8_t SecFileIdentity::bucket() const {
  return static_cast<std::uint8_t>(std::to_integer<unsigned>(account[0] ^ site[0]) % secBucketCount);
}

SecFileIdentity secFileIdentity(SecView indexKey, const SecAttributes& attributes) {
  const SecAttributes identity = secIdentity(attributes);
  return {accountTag(indexKey, identity), siteTag(indexKey, identity), restTag(indexKey, identity)};
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
