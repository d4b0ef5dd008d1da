#include "tool/EntryJSON.h"

#include <VXFoundation/VXFoundation.h>

#include <Foundation/NSUnicode.h>

#include <set>

#include "tool/CodePoints.h"
#include "tool/EntryFields.h"
#include "tool/Failure.h"
#include "tool/JSONReader.h"

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

SecSecret secretOfBase64(const SecretText& text, const JSONReader& json) {
  const auto encoded =
      NSString::stringWithData(NSData::dataWithBytes(text.bytes(), true), NSUTF8StringEncoding);
  const NSRefPtr<NSData> bytes = VXBaseConversion::dataWithBase64String(encoded);
  if (!bytes) json.fail();
  return SecSecret(bytes->bytes());
}

/// Reads a string that has an encoding in UTF-8.
SecSecret secretOfString(JSONReader& json) {
  const SecText units = json.units();
  forEachPoint(std::u16string_view(units), [&](char32_t point) {
    if (point >> 11 == 0x1B) json.fail();  // an unpaired surrogate
  });
  return SecSecret(JSONReader::utf8Of(units).bytes());
}

/// One entry as it is read; every member may come once.
class EntryReader {
 public:
  explicit EntryReader(JSONReader& json) : json_(json) {}

  SecRow read() {
    json_.forEachMember([this](std::string_view name) {
      if (!names_.emplace(name).second) json_.fail();
      readMember(name);
    });
    const SecAttributes& attributes = entry_.attributes;
    const bool isGeneric = attributes.itemClass == SecItemClass::genericPassword;
    const bool hasOther = isGeneric
                              ? attributes.server || attributes.path || attributes.port || attributes.protocol
                              : attributes.service.has_value();
    if (!names_.contains("kind") || hasSecret() != 1 || hasOther) json_.fail();
    return {0, std::move(entry_)};
  }

 private:
  std::size_t hasSecret() const { return names_.count("password") + names_.count("passwordBase64"); }

  void readMember(std::string_view name) {
    if (std::optional<SecText>* const text = textField(entry_.attributes, name))
      *text = json_.units();
    else if (name == "kind")
      readKind();
    else if (name == "port")
      entry_.attributes.port = json_.integer();
    else if (name == "password")
      entry_.secret = secretOfString(json_);
    else if (name == "passwordBase64")
      entry_.secret = secretOfBase64(json_.string(), json_);
    else
      json_.fail();
  }

  void readKind() {
    const SecretText kind = json_.string();
    if (kind.view() == "internet")
      entry_.attributes.itemClass = SecItemClass::internetPassword;
    else if (kind.view() != "generic")
      json_.fail();
  }

  JSONReader& json_;
  std::set<std::string, std::less<>> names_;
  SecEntry entry_;
};

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

std::vector<SecRow> rowsOfJSON(std::string_view text) {
  if (!NSIsUTF8(text)) throw Failure("the JSON is not UTF-8"_text);
  std::vector<SecRow> rows;
  JSONReader json(text);
  json.forEachElement([&] { rows.push_back(EntryReader(json).read()); });
  json.end();
  return rows;
}
