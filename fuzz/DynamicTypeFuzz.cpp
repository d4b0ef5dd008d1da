#include <Foundation/NSUnicode.h>
#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>

#include <algorithm>
#include <map>

#include "tests/support/DynamicIdentifiers.h"
#include "tests/support/Fuzz.h"

// Dynamic type identifiers: any two are related or not without harm, and what is packed here is unpacked
// there. An input is two identifiers, or the texts that two pack, with a line break between them.
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

NSRef<NSString> textOf(std::string_view utf8) { return NSString::stringWithUTF8String(utf8); }

void unpack(std::string_view bytes) {
  const NSRef<NSString> identifier = textOf(packed(bytes));
  const NSRefPtr<NSString> text = VXUTTypeDecodeDynamicIdentifier(*identifier);
  fuzzRequire(text ? text->UTF8String() == bytes : !NSIsASCII(bytes), "what is packed can be unpacked");
  if (!text) return;
  const NSRefPtr<NSDictionary> map = VXUTTypeDynamicIdentifierMap(*identifier);
  const Pairs pairs = pairsOf(bytes);
  fuzzRequire(map->count() == pairs.size(), "the map has no other pairs");
  for (const auto& [key, value] : pairs)
    fuzzRequire(textOf(value)->isEqual(map->objectForKey(textOf(key))), "the map has the pairs");
}

void relatePacked(std::string_view first, std::string_view second) {
  unpack(first);
  unpack(second);
  if (!NSIsASCII(first) || !NSIsASCII(second) || first.empty() || second.empty()) return;
  const bool conforms = VXUTTypeConformsTo(textOf(packed(first)), textOf(packed(second)));
  const bool expected = first == second || offersAll(pairsOf(first), pairsOf(second));
  fuzzRequire(conforms == expected, "a type conforms when it has all the pairs");
}

void relate(std::string_view first, std::string_view second) {
  const NSRefPtr<NSString> type = NSString::stringWithUTF8String(first);
  const NSRefPtr<NSString> other = NSString::stringWithUTF8String(second);
  VXUTTypeConformsTo(type, other);
  fuzzRequire(!type || VXUTTypeConformsTo(type, type), "a type conforms to itself");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const std::string_view first = input.upTo('\n'), second = input.rest();
  relate(first, second);
  relatePacked(first, second);
  return 0;
}
