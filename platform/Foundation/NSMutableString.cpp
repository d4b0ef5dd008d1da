#include <Foundation/NSMutableString.h>

#include <algorithm>

#include <Foundation/NSUnicode.h>

NSRef<NSMutableString> NSMutableString::stringWithCapacity(std::size_t capacity) {
  return allocWithTail(capacity);
}

NSRef<NSMutableString> NSMutableString::stringWithString(NSStringArg text) {
  const NSRef<NSString> given = text.get();
  const NSRef<NSMutableString> copy =
      stringWithCapacity(given->length() * (given->isASCII() ? 1 : sizeof(char16_t)));
  copy->appendString(given);
  return copy;
}

void NSMutableString::appendString(NSStringArg tail) {
  const auto text = tail.borrow();
  if (!text) NSRaiseNilReference();
  if (text->holdsSecret()) setHoldsSecret(true);
  text->visit([this](auto units) { append(units); });
}

void NSMutableString::appendCharacters(std::u16string_view units) {
  if (!NSIsASCII(units)) return append(units);
  append(std::string(units.begin(), units.end()));
}

void NSMutableString::append(std::string_view units) {
  if (!wide_) return storage_.append(std::as_bytes(std::span(units)));
  auto* place = reinterpret_cast<char16_t*>(storage_.grow(NSStorage<char16_t>::bytesFor(units.size())));
  std::copy(units.begin(), units.end(), place);
}

// The units may be this string's own: then it is already wide, and the storage handles the rest.
void NSMutableString::append(std::u16string_view units) {
  widen();
  storage_.append(std::as_bytes(std::span(units)));
}

void NSMutableString::widen() {
  if (wide_) return;
  const std::size_t length = storage_.count();
  storage_.setCount(NSStorage<char16_t>::bytesFor(length));
  auto* wide = unitsAs<char16_t>();
  const auto* narrow = unitsAs<char>();
  for (std::size_t i = length; i-- > 0;) wide[i] = static_cast<unsigned char>(narrow[i]);
  wide_ = true;
}

NSRef<NSString> NSMutableString::fixedCopy() const {
  const NSRef<NSString> copy = visit([](auto units) -> NSRef<NSString> {
    if constexpr (std::is_same_v<decltype(units), std::string_view>) {
      return stringWithASCIILength(
          units.size(), [&](std::span<char> place) { std::copy(units.begin(), units.end(), place.begin()); });
    } else {
      return stringWithCharacters(units);
    }
  });
  copy->setHoldsSecret(holdsSecret());
  return copy;
}
