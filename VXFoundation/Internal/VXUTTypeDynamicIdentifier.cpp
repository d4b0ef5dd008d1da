#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>

#include <VXFoundation/kernels/Radix.h>

namespace {

constexpr char _VXUTTypeBase32Alphabet[] = "abcdefghkmnpqrstuvwxyz0123456789";
constexpr char16_t _VXUTTypeBase32Padding = u'=';

constexpr std::size_t prefixLength = 5;
constexpr VXKernels::Radix radix{5, 5, 8, _VXUTTypeBase32Alphabet, false};

constexpr VXKernels::DigitValues values = VXKernels::digitValues(radix);

unsigned char valueOf(char16_t character) {
  return character < std::size(values.of) ? values.of[character] : VXKernels::notADigit;
}

std::u16string_view withoutPadding(std::u16string_view body) {
  return body.substr(0, body.find_last_not_of(_VXUTTypeBase32Padding) + 1);
}

// Whether the characters before a padding of `count` are exactly those that whole bytes encode to.
bool isPadding(std::size_t count) {
  return count == 0 || count == 1 || count == 3 || count == 4 || count == 6;
}

bool isValid(std::u16string_view body) {
  const std::u16string_view characters = withoutPadding(body);
  const std::size_t padded = (body.size() + radix.groupDigits - 1) / radix.groupDigits * radix.groupDigits;
  return isPadding(padded - characters.size()) &&
         std::all_of(characters.begin(), characters.end(),
                     [](char16_t character) { return valueOf(character) != VXKernels::notADigit; });
}

// A group of eight characters is a whole number of bytes, so that one buffer of bits serves all groups.
std::vector<std::byte> bytesOf(std::u16string_view characters) {
  std::vector<std::byte> bytes;
  bytes.reserve(characters.size() * radix.bits / 8);
  std::size_t bits = 0, count = 0;
  for (const char16_t character : characters) {
    bits = bits << radix.bits | valueOf(character);
    count += radix.bits;
    if (count < 8) continue;
    count -= 8;
    bytes.push_back(static_cast<std::byte>(bits >> count & 0xFF));
  }
  return bytes;
}

}  // namespace

NSRefPtr<NSString> VXUTTypeDecodeDynamicIdentifier(const NSString& identifier) {
  const auto body = static_cast<std::u16string>(*identifier.substringFromIndex(prefixLength));
  if (!isValid(body)) return NSString::string();
  return NSString::stringWithData(NSData::dataWithBytes(bytesOf(withoutPadding(body))),
                                  NSASCIIStringEncoding);
}

NSRefPtr<NSDictionary> VXUTTypeDynamicIdentifierMap(const NSString& identifier) {
  const NSRefPtr<NSString> text = VXUTTypeDecodeDynamicIdentifier(identifier);
  if (!text) return nullptr;
  const NSRef<NSMutableDictionary> pairs = NSMutableDictionary::dictionary();
  const NSRef<NSArray> components = text->componentsSeparatedByString(":");
  for (const NSRef<NSObject> component : *components) {
    const NSRef<NSArray> parts = NSRef(NSDynamicCast<NSString>(component))->componentsSeparatedByString("=");
    if (parts->count() == 2) pairs->setObject(parts->objectAtIndex(1), parts->objectAtIndex(0));
  }
  return pairs;
}
