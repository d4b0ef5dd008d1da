#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>

#include <algorithm>
#include <iterator>
#include <type_traits>

#include <Foundation/NSUnicode.h>
#include <VXFoundation/kernels/Radix.h>

namespace {

constexpr char _VXUTTypeBase32Alphabet[] = "abcdefghkmnpqrstuvwxyz0123456789";
constexpr char _VXUTTypeBase32Padding = '=';

constexpr std::size_t prefixLength = 5;
constexpr VXKernels::Radix radix{5, 5, 8, _VXUTTypeBase32Alphabet, false};

constexpr VXKernels::DigitValues values = VXKernels::digitValues(radix);

template <class Unit>
unsigned char valueOf(Unit character) {
  const std::size_t index = static_cast<std::make_unsigned_t<Unit>>(character);
  return index < std::size(values.of) ? values.of[index] : VXKernels::notADigit;
}

template <class Unit>
std::basic_string_view<Unit> withoutPadding(std::basic_string_view<Unit> body) {
  return body.substr(0, body.find_last_not_of(static_cast<Unit>(_VXUTTypeBase32Padding)) + 1);
}

// Whether the characters before a padding of `count` are exactly those that whole bytes encode to.
bool isPadding(std::size_t count) {
  return count == 0 || count == 1 || count == 3 || count == 4 || count == 6;
}

template <class Unit>
bool isValid(std::basic_string_view<Unit> body) {
  const auto characters = withoutPadding(body);
  const std::size_t padded = (body.size() + radix.groupDigits - 1) / radix.groupDigits * radix.groupDigits;
  return isPadding(padded - characters.size()) &&
         std::all_of(characters.begin(), characters.end(),
                     [](Unit character) { return valueOf(character) != VXKernels::notADigit; });
}

// A group of eight characters is a whole number of bytes, so that one buffer of bits serves all groups.
template <class Unit>
void appendBytes(std::pmr::string& bytes, std::basic_string_view<Unit> characters) {
  bytes.reserve(characters.size() * radix.bits / 8);
  std::size_t bits = 0, count = 0;
  for (const Unit character : characters) {
    bits = bits << radix.bits | valueOf(character);
    count += radix.bits;
    if (count < 8) continue;
    count -= 8;
    bytes.push_back(static_cast<char>(bits >> count & 0xFF));
  }
}

}  // namespace

VXUTTypeDynamicIdentifier::VXUTTypeDynamicIdentifier(const NSString& identifier) {
  identifier.visit([this](auto units) {
    const auto body = units.substr(std::min(prefixLength, units.size()));
    if (isValid(body)) appendBytes(bytes_, withoutPadding(body));
  });
  if (!NSIsASCII(bytes_)) return;
  text_ = bytes_;
  addPairs();
  keepLastOfEachKey();
}

void VXUTTypeDynamicIdentifier::addPairs() {
  pairs_.reserve(static_cast<std::size_t>(std::count(text_->begin(), text_->end(), ':')) + 1);
  for (std::size_t from = 0, end = 0; end != text_->npos; from = end + 1) {
    end = text_->find(':', from);
    const std::string_view piece = text_->substr(from, end - from);
    const std::size_t equals = piece.find('=');
    if (equals != piece.npos && piece.rfind('=') == equals)
      pairs_.push_back({piece.substr(0, equals), piece.substr(equals + 1)});
  }
}

void VXUTTypeDynamicIdentifier::keepLastOfEachKey() {
  std::sort(pairs_.begin(), pairs_.end(), [](const Pair& a, const Pair& b) {
    return a.key != b.key ? a.key < b.key : a.key.data() > b.key.data();  // the last one first
  });
  const auto sameKey = [](const Pair& a, const Pair& b) { return a.key == b.key; };
  pairs_.erase(std::unique(pairs_.begin(), pairs_.end(), sameKey), pairs_.end());
}

bool VXUTTypeDynamicIdentifier::has(const Pair& pair) const {
  const auto byKey = [](const Pair& a, const Pair& b) { return a.key < b.key; };
  const auto found = std::lower_bound(pairs_.begin(), pairs_.end(), pair, byKey);
  return found != pairs_.end() && *found == pair;
}
