#include <VXFoundation/VXUTTypeDynamicIdentifier.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>

namespace {

constexpr std::u16string_view _VXUTTypeBase32Alphabet = u"abcdefghkmnpqrstuvwxyz0123456789";
constexpr char16_t _VXUTTypeBase32Padding = u'=';

constexpr std::size_t prefixLength = 5;
constexpr std::size_t groupLength = 8;

constexpr std::uint8_t noValue = 0xFF;

constexpr auto values = [] {
  std::array<std::uint8_t, 128> table{};
  table.fill(noValue);
  for (std::size_t value = 0; value < _VXUTTypeBase32Alphabet.size(); ++value)
    table[_VXUTTypeBase32Alphabet[value]] = static_cast<std::uint8_t>(value);
  return table;
}();

std::uint8_t valueOf(char16_t character) { return character < values.size() ? values[character] : noValue; }

std::u16string_view withoutPadding(std::u16string_view body) {
  return body.substr(0, body.find_last_not_of(_VXUTTypeBase32Padding) + 1);
}

// Whether `count` characters that fill up the last group stand for whole bytes that leave out no character.
bool isPadding(std::size_t count) {
  return count == 0 || count == 1 || count == 3 || count == 4 || count == 6;
}

bool isValid(std::u16string_view body) {
  const std::u16string_view characters = withoutPadding(body);
  const std::size_t padded = (body.size() + groupLength - 1) / groupLength * groupLength;
  return isPadding(padded - characters.size()) &&
         std::all_of(characters.begin(), characters.end(),
                     [](char16_t character) { return valueOf(character) != noValue; });
}

// Groups of eight characters are whole bytes, so that one buffer of bits serves all of them.
std::vector<std::byte> bytesOf(std::u16string_view characters) {
  std::vector<std::byte> bytes;
  bytes.reserve(characters.size() * 5 / 8);
  std::size_t bits = 0, count = 0;
  for (const char16_t character : characters) {
    bits = bits << 5 | valueOf(character);
    count += 5;
    if (count < 8) continue;
    count -= 8;
    bytes.push_back(static_cast<std::byte>(bits >> count & 0xFF));
  }
  return bytes;
}

}  // namespace

RefPtr<NSString> VXUTTypeDecodeDynamicIdentifier(const NSString& identifier) {
  const auto body = static_cast<std::u16string>(*identifier.substringFromIndex(prefixLength));
  if (!isValid(body)) return NSString::string();
  return NSString::stringWithData(NSData::dataWithBytes(bytesOf(withoutPadding(body))),
                                  NSASCIIStringEncoding);
}

RefPtr<NSDictionary> VXUTTypeDynamicIdentifierMap(const NSString& identifier) {
  const RefPtr<NSString> text = VXUTTypeDecodeDynamicIdentifier(identifier);
  if (!text) return nullptr;
  const Ref<NSMutableDictionary> map = NSMutableDictionary::dictionary();
  const Ref<NSArray> components = text->componentsSeparatedByString(":");
  for (const Ref<NSObject> component : *components) {
    const Ref<NSArray> parts = Ref(dynamicCast<NSString>(component))->componentsSeparatedByString("=");
    if (parts->count() == 2) map->setObject(parts->objectAtIndex(1), parts->objectAtIndex(0));
  }
  return map;
}
