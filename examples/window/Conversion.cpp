#include "examples/window/Conversion.h"

#include <VXFoundation/VXFoundation.h>

#include <functional>

#include "examples/window/Localised.h"

namespace {

using Conversion::Outcome;
using Take = std::function<bool(const NSData&)>;

constexpr qint64 pieceSize = 1 << 16;
constexpr int shownLength = 100000;

struct Named {
  const char* name;
  VXNotation notation;
};
constexpr Named notations[] = {{"base 64", VXNotation::base64},
                               {"base 64 for URLs", VXNotation::base64URL},
                               {"base 32", VXNotation::base32},
                               {"base 16", VXNotation::base16},
                               {"percent", VXNotation::percent}};
constexpr std::size_t count = std::size(notations);

/// Passes the device's bytes in pieces to `take` until it returns false, and returns whether it never did.
bool readAll(QIODevice& input, const Take& take) {
  for (QByteArray piece = input.read(pieceSize); !piece.isEmpty(); piece = input.read(pieceSize))
    if (!take(*VXQt::data(piece))) return false;
  return true;
}

QString shown(const NSData& text) {
  const QString whole = QString::fromLatin1(VXQt::qByteArray(text));
  return whole.size() > shownLength ? whole.left(shownLength) + "…" : whole;
}

Outcome encode(VXNotation notation, QIODevice& input) {
  VXEncoder encoder(notation);
  const auto text = NSMutableData::data();
  readAll(input, [&](const NSData& piece) { return encoder.update(piece, *text), true; });
  encoder.finish(*text);
  return {shown(*text)};
}

Outcome decode(VXNotation notation, QIODevice& input) {
  VXDecoder decoder(notation);
  const auto bytes = NSMutableData::data();
  const bool accepted = readAll(input, [&](const NSData& piece) { return decoder.update(piece, *bytes); });
  if (!accepted || !decoder.finish(*bytes))
    return {localised("Refused at character %1.").arg(*decoder.refusal() + 1), true};
  if (const auto text = NSString::stringWithData(bytes, NSUTF8StringEncoding)) return {VXQt::qString(text)};
  return {VXQt::qString(VXBaseConversion::base16String(*bytes))};
}

Outcome digest(VXDigest digest, QIODevice& input) {
  readAll(input, [&](const NSData& piece) { return digest.update(piece.bytes()), true; });
  return {VXQt::qString(VXBaseConversion::base16String(*digest.finish())).toLower()};
}

}  // namespace

std::vector<QString> Conversion::names() {
  std::vector<QString> names;
  for (const NSRef<NSString>& direction :
       {NSString::stringWithString("Encode: %1"), NSString::stringWithString("Decode: %1")})
    for (const Named& each : notations) names.push_back(localised(direction).arg(each.name));
  for (const char* name : {"SHA-256", "SHA-1", "MD5"}) names.push_back(localised("Digest: %1").arg(name));
  return names;
}

Outcome Conversion::perform(std::size_t conversion, QIODevice& input) {
  if (conversion < count) return encode(notations[conversion].notation, input);
  if (conversion < 2 * count) return decode(notations[conversion - count].notation, input);
  if (conversion == 2 * count) return digest(VXDigest::SHA256(), input);
  return digest(conversion == 2 * count + 1 ? VXDigest::SHA1() : VXDigest::MD5(), input);
}
