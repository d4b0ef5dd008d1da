#include <Foundation/NSString.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <ostream>

#include <Foundation/Internal/NSKeyedHash.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>
#include <Foundation/NSException.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/NSUnicode.h>
#include <Foundation/kernels/ASCII.h>

namespace {

NSRef<NSString> stringWithUnits(std::string_view units) {
  return NSString::stringWithASCIILength(
      units.size(), [&](std::span<char> place) { NSKernels::copy(units, place.data()); });
}

NSRef<NSString> stringWithUnits(std::u16string_view units) { return NSString::stringWithCharacters(units); }

/// Returns a part of a string, which holds a secret if the string does.
template <class Unit>
NSRef<NSString> part(std::basic_string_view<Unit> units, bool secret) {
  const NSRef<NSString> text = stringWithUnits(units);
  text->setHoldsSecret(secret);
  return text;
}

std::size_t indexOf(std::string_view mark, std::string_view units) { return units.find(mark); }

// The standard library looks at one unit after another.
std::size_t indexOf(std::u16string_view mark, std::u16string_view units) {
  const auto& unitsBefore = NSKernels::unicode().unitsBefore;
  std::size_t from = 0;
  while (units.size() - from >= mark.size()) {
    const std::size_t candidates = units.size() - from - mark.size() + 1;
    const std::size_t skipped = unitsBefore(units.data() + from, candidates, mark.front());
    if (skipped == candidates) break;
    from += skipped;
    if (std::memcmp(units.data() + from, mark.data(), mark.size() * sizeof(char16_t)) == 0) return from;
    ++from;
  }
  return units.npos;
}

template <class Unit>
NSRef<NSArray> parts(std::basic_string_view<Unit> units, std::basic_string_view<Unit> mark, bool secret) {
  const NSRef<NSMutableArray> pieces = NSMutableArray::array();
  std::size_t end = 0;
  while (!mark.empty() && (end = indexOf(mark, units)) != units.npos) {
    pieces->addObject(part(units.substr(0, end), secret));
    units.remove_prefix(end + mark.size());
  }
  pieces->addObject(part(units, secret));
  return pieces;
}

[[noreturn]] void raiseRange(std::size_t index, std::size_t length) {
  NSException::raise(NSRangeException, "index %lu is beyond the string's length %lu", index, length);
}

}  // namespace

NSRef<NSString> NSStringFromUTF8(std::string_view utf8, const char* operation) {
  const NSRefPtr<NSString> string = NSString::stringWithUTF8String(utf8);
  if (!string)
    NSException::raise(NSInvalidArgumentException, "%@: a string is malformed UTF-8",
                       std::string_view(operation));
  return string;
}

NSRef<NSString> NSString::string() { return ofASCIILength(0); }

NSRef<NSString> NSString::stringWithString(NSStringArg text) { return NSRef<NSString>(text.get())->copy(); }

NSRef<NSString> NSString::ofBytes(std::size_t size, bool wide) {
  NSRef<NSString> text = allocWithTail(size, wide);
  text->storage_.setCount(size);
  return text;
}

NSRef<NSString> NSString::ofUTF16Length(std::size_t length) {
  return ofBytes(NSStorage<char16_t>::bytesFor(length), true);
}

// Marks a secret before it is converted, so that not even the part before a malformed sequence stays behind.
// Inlined in its two callers: another call is a tenth of the time of a short string.
[[gnu::always_inline]] inline NSRefPtr<NSString> NSString::fromUTF8(std::string_view bytes, bool secret) {
  if (NSKernels::isASCII(bytes)) {
    NSRef<NSString> text = stringWithUnits(bytes);
    text->setHoldsSecret(secret);
    return NSRefPtr<NSString>(std::move(text));
  }
  const NSKernels::UnicodeKernels& kernels = NSKernels::unicode();
  NSRef<NSString> text = ofUTF16Length(kernels.utf16Length(bytes.data(), bytes.size()));
  text->setHoldsSecret(secret);
  if (kernels.utf16FromUTF8(bytes.data(), bytes.size(), text->unitsAs<char16_t>(), text->length()) !=
      bytes.size())
    return nullptr;
  return NSRefPtr<NSString>(std::move(text));
}

NSRefPtr<NSString> NSString::stringWithUTF8String(std::string_view bytes) { return fromUTF8(bytes, false); }

NSRefPtr<NSString> NSString::stringWithUTF8String(const char* bytes) {
  if (!bytes) return nullptr;
  return stringWithUTF8String(std::string_view(bytes));
}

NSRef<NSString> NSString::stringWithCharacters(std::u16string_view units) {
  if (NSIsASCII(units)) {
    return stringWithASCIILength(units.size(), [&](std::span<char> place) {
      std::transform(units.begin(), units.end(), place.begin(),
                     [](char16_t unit) { return static_cast<char>(unit); });
    });
  }
  const std::size_t size = NSStorage<char16_t>::bytesFor(units.size());
  const NSRef<NSString> text = allocWithTail(size, true);
  text->storage_.append(std::as_bytes(std::span(units)));
  return text;
}

NSRefPtr<NSString> NSString::stringWithData(const NSRefPtr<NSData>& data, NSStringEncoding encoding) {
  if (!data) return string();
  const std::string_view bytes(reinterpret_cast<const char*>(data->bytes().data()), data->length());
  if (encoding == NSASCIIStringEncoding && !NSIsASCII(bytes)) return nullptr;
  return fromUTF8(bytes, data->holdsSecret());
}

char16_t NSString::characterAtIndex(std::size_t index) const {
  if (index >= length()) raiseRange(index, length());
  return visit([index](auto units) { return static_cast<char16_t>(units[index]); });
}

bool NSString::isEqualToString(NSStringArg other) const {
  const auto text = other.borrow();
  // All-ASCII content is always narrow, so the widths differ only where contents do.
  if (!text || wide_ != text->wide_ || storage_.count() != text->storage_.count()) return false;
  return std::memcmp(storage_.units().data(), text->storage_.units().data(), storage_.count()) == 0;
}

bool NSString::hasPrefix(NSStringArg prefix) const {
  const auto text = prefix.borrow();
  if (!text || text->length() > length()) return false;
  return visit([&](auto units) {
    return text->visit([units](auto start) { return std::equal(start.begin(), start.end(), units.begin()); });
  });
}

std::optional<std::string> NSString::UTF8String() const {
  if (wide_) return NSUTF8FromUTF16(std::u16string_view(unitsAs<char16_t>(), length()));
  return std::string(unitsAs<char>(), length());
}

NSString::operator std::string() const {
  std::optional<std::string> bytes = UTF8String();
  if (!bytes)
    NSException::raise(NSInvalidArgumentException,
                       "a string with an unpaired surrogate cannot be encoded in UTF-8");
  return *std::move(bytes);
}

NSString::operator std::u16string() const {
  return visit([](auto units) { return std::u16string(units.begin(), units.end()); });
}

NSRefPtr<NSData> NSString::dataUsingEncoding(NSStringEncoding encoding) const {
  if (wide_ && encoding == NSASCIIStringEncoding) return nullptr;
  if (!wide_) return NSData::dataWithBytes(storage_.units(), holdsSecret());
  const NSKernels::UnicodeKernels& kernels = NSKernels::unicode();
  std::size_t encoded = 0;
  NSRef<NSData> data = NSData::dataWithLength(
      kernels.utf8Length(unitsAs<char16_t>(), length()), [&](std::span<std::byte> bytes) {
        encoded = kernels.utf8FromUTF16(unitsAs<char16_t>(), length(), reinterpret_cast<char*>(bytes.data()),
                                        bytes.size());
      });
  data->setHoldsSecret(holdsSecret());
  return encoded == length() ? NSRefPtr<NSData>(std::move(data)) : nullptr;
}

NSRef<NSString> NSString::substringFromIndex(std::size_t index) const {
  if (index > length()) raiseRange(index, length());
  return visit([&](auto units) { return part(units.substr(index), holdsSecret()); });
}

NSRef<NSString> NSString::stringByAppendingString(NSStringArg tail) const {
  const NSRef<NSMutableString> joined = mutableCopy();
  joined->appendString(tail);
  return joined->copy();
}

NSRef<NSArray> NSString::componentsSeparatedByString(NSStringArg separator) const {
  const NSRef<NSString> mark = separator.get();
  if (wide_)
    return parts(std::u16string_view(unitsAs<char16_t>(), length()),
                 std::u16string_view(std::u16string(*mark)), holdsSecret());
  const std::string_view units(unitsAs<char>(), length());
  // A string that is not ASCII does not occur in one that is.
  if (mark->wide_) return NSArray::arrayWithObject(part(units, holdsSecret()));
  return parts(units, std::string_view(mark->unitsAs<char>(), mark->length()), holdsSecret());
}

bool NSString::isEqual(const NSRefPtr<NSObject>& other) const {
  const auto* text = NSDynamicCast<NSString>(other.get());
  return text && (text == this || isEqualToString(*text));
}

std::size_t NSString::hash() const { return NSKeyedHashOf(storage_.units()); }

NSRef<NSMutableString> NSString::mutableCopy() const { return NSMutableString::stringWithString(*this); }

NSRef<NSObject> NSString::mutableCopyObject() const { return mutableCopy(); }

const NSRef<NSString>& NSConstantString(NSStringArg text) {
  return *new NSRef<NSString>(NSString::stringWithString(text));
}

std::ostream& operator<<(std::ostream& stream, const NSString& text) {
  if (const auto bytes = text.UTF8String()) return stream << *bytes;
  // Readable rather than refused: streams are for people.
  for (std::size_t i = 0; i < text.length(); ++i) {
    stream << "\\u" << std::hex << static_cast<unsigned>(text.characterAtIndex(i)) << std::dec;
  }
  return stream;
}

std::ostream& operator<<(std::ostream& stream, const NSRefPtr<NSString>& text) {
  return text ? stream << *text : stream << "(null)";
}

std::strong_ordering operator<=>(const NSString& a, const NSString& b) noexcept {
  return a.visit([&](auto units) {
    return b.visit([&](auto others) {
      return std::lexicographical_compare_three_way(
          units.begin(), units.end(), others.begin(), others.end(),
          [](auto unit, auto other) { return static_cast<char16_t>(unit) <=> static_cast<char16_t>(other); });
    });
  });
}
