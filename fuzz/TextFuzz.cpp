#include <Foundation/NSArray.h>
#include <Foundation/NSException.h>
#include <Foundation/NSUnicode.h>
#include <iconv.h>

#include <optional>

#include "tests/support/Fuzz.h"

// String conversions, compared with those of the C library, which is strict too, and with each other.
namespace {

/// Returns what the C library converts `input` to; no value for a malformed or truncated sequence.
std::optional<std::string> converted(const char* from, const char* to, std::string_view input) {
  const iconv_t conversion = iconv_open(to, from);
  std::string source(input), result(input.size() * 3, '\0');
  char *in = source.data(), *out = result.data();
  std::size_t inLeft = source.size(), outLeft = result.size();
  const bool done = iconv(conversion, &in, &inLeft, &out, &outLeft) != static_cast<std::size_t>(-1);
  iconv_close(conversion);
  if (!done) return std::nullopt;
  result.resize(result.size() - outLeft);
  return result;
}

std::u16string unitsFrom(std::string_view bytes) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                   static_cast<unsigned char>(bytes[i + 1]) << 8);
  return units;
}

void fromUTF8(std::string_view bytes) {
  const auto units = NSUTF16FromUTF8(bytes);
  const auto theirs = converted("UTF-8", "UTF-16LE", bytes);
  fuzzRequire(NSIsUTF8(bytes) == units.has_value(), "all UTF-8 is converted");
  fuzzRequire(units.has_value() == theirs.has_value(), "the C library accepts the same UTF-8");
  if (!units) return;
  fuzzRequire(*units == unitsFrom(*theirs), "UTF-8 is converted alike");
  const NSRefPtr<NSString> text = NSString::stringWithUTF8String(bytes);
  fuzzRequire(text->isEqual(NSString::stringWithCharacters(*units)), "both ways make the same string");
  fuzzRequire(text->UTF8String() == bytes, "UTF-8 is returned unchanged");
  fuzzRequire(text->isASCII() == NSIsASCII(bytes), "ASCII is kept as ASCII");
}

void fromUTF16(std::u16string_view units, std::string_view bytes) {
  const auto utf8 = NSUTF8FromUTF16(units);
  fuzzRequire(utf8 == converted("UTF-16LE", "UTF-8", bytes), "UTF-16 is converted alike");
  const NSRef<NSString> text = NSString::stringWithCharacters(units);
  fuzzRequire(std::u16string(*text) == units, "units are returned unchanged");
  fuzzRequire(text->UTF8String() == utf8, "a string is converted as its units are");
}

/// Splits a string at every separator and joins it again.
void takeApart(const NSRef<NSString>& text, const std::u16string& separator) {
  const NSRef<NSString> mark = NSString::stringWithCharacters(separator);
  const NSRef<NSArray> pieces = text->componentsSeparatedByString(mark);
  for (const NSRef<NSObject> piece : *pieces)
    fuzzRequire(separator.empty() ||
                    std::u16string(*NSDynamicCast<NSString>(piece)).find(separator) == std::u16string::npos,
                "no component contains the separator");
  const NSRef<NSString> joined = pieces->componentsJoinedByString(mark);
  fuzzRequire(text->isEqual(joined), "joined components equal the string");
  fuzzRequire(text->hash() == joined->hash(), "equal strings have equal hashes");
}

void fillIn(const NSRef<NSString>& format) {
  try {
    NSFormat(*format, {NSFormatArg(format), NSFormatArg(7)});
  } catch (const NSException&) {
    // raised for a format that does not fit its arguments
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = FuzzInput(data, size).rest();
  fromUTF8(bytes);
  const std::u16string units = unitsFrom(bytes);
  fromUTF16(units, bytes.substr(0, units.size() * 2));
  const NSRef<NSString> text = NSString::stringWithCharacters(units);
  takeApart(text, units.substr(0, 1));
  takeApart(text, units.substr(0, 2));
  fillIn(text);
  return 0;
}
