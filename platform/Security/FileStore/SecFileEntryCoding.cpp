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

SecAttributes takeAttributes(SecByteReader& reader) {
  SecAttributes attributes;
  attributes.itemClass = takeClass(reader);
  for (auto* text : {&attributes.account, &attributes.service, &attributes.server, &attributes.path,
                     &attributes.protocol, &attributes.label})
    *text = takeText(reader);
  attributes.port = takePort(reader);
  return attributes;
}

SecSecret takeSecret(SecByteReader& reader) { return SecSecret(reader.raw(reader.number<std::uint32_t>())); }

bool isPadding(SecView bytes) {
  return bytes.size() < paddingStep &&
         std::all_of(bytes.begin(), bytes.end(), [](std::byte byte) { return byte == std::byte{0}; });
}

}  // namespace

SecSecretWriter secEncodeEntry(const SecEntry& entry) {
  const SecView secret = entry.secret.bytes();
  SecSecretWriter writer;
  writer.reserve(secret.size() + 4 * paddingStep);
  putAttributes(writer, entry.attributes);
  writer.number(static_cast<std::uint32_t>(secret.size())).raw(secret).padTo(paddingStep);
  return writer;
}

SecEntry secDecodeEntry(SecView bytes) {
  SecByteReader reader(bytes);
  SecEntry entry;
  entry.attributes = takeAttributes(reader);
  entry.secret = takeSecret(reader);
  secRequire(isPadding(reader.rest()), errSecDecode);
  return entry;
}
