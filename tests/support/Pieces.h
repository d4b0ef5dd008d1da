#pragma once

#include <random>

#include <VXFoundation/VXURLCoding.h>

#include "tests/support/Fuzz.h"
#include "tests/support/Notations.h"

/// Bytes and text that are converted in pieces, compared with the operations on the whole.
namespace Pieces {

/// The places where pieces end, except for the last one; equal ones make empty pieces.
using Ends = std::vector<std::size_t>;

struct Coder {
  std::string name;
  VXNotation notation;
  Bytes (*encode)(std::string_view bytes);
  Bytes (*decode)(std::string_view text);  // null if the notation is only written
};

template <std::size_t index>
Bytes encodeWhole(std::string_view bytes) {
  return bytesOf(notations[index].encode(*dataOf(bytes)));
}
/// A byte beyond ASCII is a unit beyond ASCII.
template <std::size_t index>
Bytes decodeWhole(std::string_view text) {
  const auto units = std::u16string(text.begin(), text.end());
  return bytesOf(notations[index].decode(NSString::stringWithCharacters(units)));
}

inline const Coder coders[] = {
    {"base64", VXNotation::base64, encodeWhole<0>, decodeWhole<0>},
    {"base32", VXNotation::base32, encodeWhole<1>, decodeWhole<1>},
    {"base16", VXNotation::base16, encodeWhole<2>, decodeWhole<2>},
    {"base64url", VXNotation::base64URL,
     [](std::string_view bytes) -> Bytes { return notations[3].encodedByRule(bytes); },
     [](std::string_view text) { return notations[3].decodedByRule(std::string(text)); }},
    {"percent", VXNotation::percent,
     [](std::string_view bytes) { return bytesOf(VXURLEncodeData(dataOf(bytes))); },
     [](std::string_view text) { return bytesOf(VXURLDecodeData(dataOf(text))); }},
    {"base2", VXNotation::base2,
     [](std::string_view bytes) { return bytesOf(VXBaseConversion::base2String(*dataOf(bytes))); }, nullptr},
};

/// What became of a text: its bytes, or the place where it was refused.
struct Decoded {
  Bytes bytes;
  std::optional<std::size_t> refusal;
  bool operator==(const Decoded&) const = default;
};

/// Calls `each` with every piece.
void forEachPiece(std::string_view whole, Ends ends, auto&& each) {
  ends.push_back(whole.size());
  for (std::size_t i = 0, start = 0; i < ends.size(); start = ends[i++])
    each(std::as_bytes(std::span(whole.substr(start, ends[i] - start))));
}

/// Converts into memory of exactly the room that is asked for.
std::optional<std::string> converted(std::size_t room, auto&& convert) {
  std::vector<std::byte> output(room);
  const std::optional<std::size_t> count = convert(std::span(output));
  if (!count) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(output.data()), *count);
}

inline std::string encoded(const Coder& coder, std::string_view bytes, const Ends& ends) {
  VXEncoder encoder(coder.notation);
  std::string text;
  forEachPiece(bytes, ends, [&](auto piece) {
    text += *converted(encoder.maximumLength(piece.size()),
                       [&](auto room) { return encoder.update(piece, room); });
  });
  return text + *converted(encoder.maximumLength(0), [&](auto room) { return encoder.finish(room); });
}

inline Decoded decoded(const Coder& coder, std::string_view text, const Ends& ends) {
  VXDecoder decoder(coder.notation);
  Bytes bytes = "";
  std::size_t read = 0;
  const auto add = [&](const Bytes& more) { more&& bytes ? void(*bytes += *more) : bytes.reset(); };
  forEachPiece(text, ends, [&](auto piece) {
    add(converted(decoder.maximumLength(piece.size()),
                  [&](auto room) { return decoder.update(piece, room); }));
    read += piece.size();
    fuzzRequire(!decoder.refusal() == !!bytes, "a text is refused from its refusal on");
    fuzzRequire(!decoder.refusal() || *decoder.refusal() < read, "a refused unit has been read");
  });
  add(converted(decoder.maximumLength(0), [&](auto room) { return decoder.finish(room); }));
  return {bytes, decoder.refusal()};
}

/// Tries the ends that a text may have.
inline bool maybeAccepted(const Coder& coder, const std::string& start) {
  for (std::size_t digits = 0; digits < 8; ++digits)
    for (std::size_t padding = 0; padding <= 6; ++padding)
      if (coder.decode(start + std::string(digits, 'A') + std::string(padding, '='))) return true;
  return false;
}

inline Decoded decodedByRule(const Coder& coder, const std::string& text) {
  if (const Bytes bytes = coder.decode(text)) return {bytes, {}};
  std::size_t good = 0;
  while (good < text.size() && maybeAccepted(coder, text.substr(0, good + 1))) ++good;
  return {{}, good};
}

/// Ends at random, some of them equal.
inline Ends randomEnds(std::mt19937& random, std::size_t length) {
  Ends ends(random() % 20);
  for (std::size_t& end : ends) end = random() % (length + 1);
  if (!ends.empty()) ends.push_back(ends.front());
  std::sort(ends.begin(), ends.end());
  return ends;
}

/// Every way to cut a short text into pieces.
void forEverySplit(std::size_t length, auto&& each) {
  for (unsigned cuts = 0; cuts < 1u << (length > 0 ? length - 1 : 0); ++cuts) {
    Ends ends;
    for (std::size_t end = 1; end < length; ++end)
      if (cuts >> (end - 1) & 1) ends.push_back(end);
    each(ends);
  }
}

/// Compares texts and bytes in pieces with the whole, and the place of a refusal with that of single units,
/// or of a short text with the rule.
inline void compare(const Coder& coder, const std::string& input, unsigned seed) {
  std::mt19937 random(seed);
  const Ends ends = randomEnds(random, input.size());
  fuzzRequire(encoded(coder, input, ends) == coder.encode(input), "pieces are encoded like the whole");
  const Decoded found = decoded(coder, input, ends);
  fuzzRequire(found.bytes == coder.decode(input), "pieces are decoded or refused like the whole");
  Ends units(input.size());
  for (std::size_t end = 0; end < units.size(); ++end) units[end] = end;
  fuzzRequire(found == decoded(coder, input, units), "the place of a refusal does not depend on the pieces");
  if (input.size() <= 16)
    fuzzRequire(found == decodedByRule(coder, input), "a refusal has its place by the rule");
}

}  // namespace Pieces
