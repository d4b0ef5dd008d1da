#include <Security/FileStore/SecFileEntryCoding.h>

#include <algorithm>

namespace {

constexpr std::size_t paddingStep = 64;

bool takePresence(SecByteReader& reader) {
  const auto presence = reader.number<std::uint8_t>();
  secRequire(presence <= 1, errSecDecode);
  return presence == 1;
}

std::optional<SecText> takeText(SecByteReader& reader) {
  if (!takePresence(reader)) return std::nullopt;
  const std::size_t size = reader.number<std::uint32_t>();
  SecByteReader units(reader.raw(size * sizeof(char16_t)));
  SecText text(size, u'\0');
  for (char16_t& unit : text) unit = static_cast<char16_t>(units.number<std::uint16_t>());
  return text;
}

std::optional<std::int64_t> takePort(SecByteReader& reader) {
  if (!takePresence(reader)) return std::nullopt;
  return reader.number<std::int64_t>();
}

SecItemClass takeClass(SecByteReader& reader) {
  const auto itemClass = static_cast<SecItemClass>(reader.number<std::uint8_t>());
  secRequire(itemClass == SecItemClass::genericPassword || itemClass == SecItemClass::internetPassword,
             errSecDecode);
  return itemClass;
}

void putAttributes(SecSecretWriter& writer, const SecAttributes& attributes) {
  writer.number(static_cast<std::uint8_t>(attributes.itemClass));
  for (const auto* text : {&attributes.account, &attributes.service, &attributes.server, &attributes.path,
                           &attributes.protocol, &attributes.label})
    writer.text(*text);
  writer.presence(attributes.port.has_value());
  if (attributes.port) writer.number(*attributes.port);
}

bool isPadding(SecView bytes) {
  return bytes.size() < paddingStep &&
         std::all_of(bytes.begin(), bytes.end(), [](std::byte byte) { return byte == std::byte{0}; });
}

}  // namespace

SecSecretWriter secEncodeHead(const SecFileEntryHead& head) {
  SecSecretWriter writer;
  writer.reserve(4 * paddingStep);
  writer.number(head.order).number(head.change).raw(head.secret);
  putAttributes(writer, head.attributes);
  writer.padTo(paddingStep);
  return writer;
}

SecFileEntryHead secDecodeHead(SecView bytes) {
  SecByteReader reader(bytes);
  SecFileEntryHead head;
  head.order = reader.number<std::int64_t>();
  head.change = reader.number<std::uint64_t>();
  head.secret = reader.array<sizeof(SecTag)>();
  head.attributes = secTakeAttributes(reader);
  secRequirePadding(reader);
  return head;
}

SecSecretWriter secEncodeSecret(SecView secret) {
  SecSecretWriter writer;
  writer.reserve(secret.size() + 2 * paddingStep);
  writer.number(static_cast<std::uint32_t>(secret.size())).raw(secret).padTo(paddingStep);
  return writer;
}

SecSecret secDecodeSecret(SecView bytes) {
  SecByteReader reader(bytes);
  SecSecret secret = secTakeSecret(reader);
  secRequirePadding(reader);
  return secret;
}

SecAttributes secTakeAttributes(SecByteReader& reader) {
  SecAttributes attributes;
  attributes.itemClass = takeClass(reader);
  for (auto* text : {&attributes.account, &attributes.service, &attributes.server, &attributes.path,
                     &attributes.protocol, &attributes.label})
    *text = takeText(reader);
  attributes.port = takePort(reader);
  return attributes;
}

SecSecret secTakeSecret(SecByteReader& reader) {
  return SecSecret(reader.raw(reader.number<std::uint32_t>()));
}

void secRequirePadding(const SecByteReader& reader) { secRequire(isPadding(reader.rest()), errSecDecode); }
