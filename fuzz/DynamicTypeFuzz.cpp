#include <Foundation/NSUnicode.h>
#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>
#include <VXFoundation/VXUTType.h>

#include <algorithm>
#include <map>

#include "tests/support/DynamicIdentifiers.h"
#include "tests/support/Fuzz.h"

// Dynamic type identifiers: any two can be compared, and a body is unpacked by the rules. An input is two
// identifiers, two bodies, or the text that two identifiers pack, with a line break between them.
namespace {

using Pairs = std::map<std::string, std::string>;

Pairs pairsOf(std::string_view text) {
  Pairs pairs;
  while (true) {
    const std::string_view piece = text.substr(0, text.find(':'));
    const std::size_t equals = piece.find('=');
    if (equals != std::string_view::npos && piece.rfind('=') == equals)
      pairs[std::string(piece.substr(0, equals))] = piece.substr(equals + 1);
    if (piece.size() == text.size()) return pairs;
    text.remove_prefix(piece.size() + 1);
  }
}

bool offersAll(const Pairs& offered, const Pairs& required) {
  return std::all_of(required.begin(), required.end(), [&](const auto& pair) {
    const auto found = offered.find(pair.first);
    return pair.first.starts_with('?') || (found != offered.end() && found->second == pair.second);
  });
}

NSRef<NSString> string(std::string_view utf8) { return NSString::stringWithUTF8String(utf8); }

/// Returns the text that a body packs; no value if that is not ASCII.
Bytes unpackedByRule(std::string body) {
  while (body.size() % 8 != 0) body.push_back('=');
  const std::size_t end = body.find_last_not_of('=') + 1, padding = body.size() - end;
  const Bytes bytes = bytesByRule(body.substr(0, end), dynamicAlphabet, 5);
  if (padding >= 7 || padding == 2 || padding == 5 || !bytes) return "";
  return NSIsASCII(*bytes) ? bytes : std::nullopt;
}

void unpack(std::string_view body) {
  const NSRef<NSString> identifier = string("dyn.a" + std::string(body));
  const Bytes expected = unpackedByRule(std::string(body));
  const VXUTTypeDynamicIdentifier unpacked(*identifier);
  fuzzRequire(unpacked.text() == expected, "unpacked by the rules");
  if (!expected) return;
  const Pairs pairs = pairsOf(*expected);
  fuzzRequire(std::equal(pairs.begin(), pairs.end(), unpacked.pairs().begin(), unpacked.pairs().end(),
                         [](const auto& rule, const auto& pair) {
                           return rule.first == pair.key && rule.second == pair.value;
                         }),
              "the pairs are those of the text");
}

void relatePacked(std::string_view first, std::string_view second) {
  for (const std::string_view text : {first, second}) unpack(digitsByRule(text, dynamicAlphabet, 5));
  if (!NSIsASCII(first) || !NSIsASCII(second) || first.empty() || second.empty()) return;
  const bool conforms = VXUTTypeConformsTo(string(packed(first)), string(packed(second)));
  const bool expected = first == second || offersAll(pairsOf(first), pairsOf(second));
  fuzzRequire(conforms == expected, "a type conforms when it has all the pairs");
}

void relate(std::string_view first, std::string_view second) {
  const NSRefPtr<NSString> type = NSString::stringWithUTF8String(first);
  const NSRefPtr<NSString> other = NSString::stringWithUTF8String(second);
  VXUTTypeConformsTo(type, other);
  fuzzRequire(!type || VXUTTypeConformsTo(type, type), "a type conforms to itself");
  if (NSIsASCII(first)) unpack(first);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const std::string_view first = input.upTo('\n'), second = input.rest();
  relate(first, second);
  relatePacked(first, second);
  return 0;
}
