#include "tool/EntryJSON.h"

#include <VXFoundation/VXFoundation.h>

#include <Foundation/NSUnicode.h>

#include "tool/EntryFields.h"

namespace {

void appendName(JSONText& text, std::string_view name) {
  text << ",";
  text.appendString(name);
  text << ":";
}

void appendSecret(JSONText& text, const SecSecret& secret) {
  const std::span<const std::byte> bytes = secret.bytes();
  const std::string_view utf8(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  const bool isText = NSIsUTF8(utf8);
  appendName(text, isText ? "password" : "passwordBase64");
  if (isText) return text.appendString(utf8);
  VXBaseConversion::base64String(*NSData::dataWithBytes(bytes, true))->visit([&](auto encoded) {
    text.appendString(encoded);
  });
}

}  // namespace

void appendEntry(JSONText& text, const SecEntry& entry, JSONSecrets secrets) {
  text << "{\"kind\":\"" << kindOf(entry.attributes) << "\"";
  for (const auto& [name, value] : fieldsOf(entry.attributes)) {
    appendName(text, name);
    if (const auto* number = std::get_if<std::int64_t>(&value))
      text << std::to_string(*number);
    else
      text.appendString(std::get<std::u16string_view>(value));
  }
  if (secrets == JSONSecrets::write) appendSecret(text, entry.secret);
  text << "}";
}

JSONText arrayOf(std::span<const SecRow> rows, JSONSecrets secrets) {
  JSONText text;
  text << "[";
  for (const SecRow& row : rows) {
    text << (&row == rows.data() ? "\n" : ",\n");
    appendEntry(text, row.entry, secrets);
  }
  text << (rows.empty() ? "]\n" : "\n]\n");
  return text;
}
