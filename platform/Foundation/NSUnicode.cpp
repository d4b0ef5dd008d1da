#include <Foundation/NSUnicode.h>

#include <Foundation/kernels/ASCII.h>

using NSKernels::unicode;

bool NSIsASCII(std::string_view text) noexcept { return NSKernels::isASCII(text); }

bool NSIsASCII(std::u16string_view text) noexcept {
  return unicode().asciiUnits(text.data(), text.size()) == text.size();
}

std::optional<std::u16string> NSUTF16FromUTF8(std::string_view text) {
  std::u16string units(unicode().utf16Length(text.data(), text.size()), u'\0');
  if (unicode().utf16FromUTF8(text.data(), text.size(), units.data(), units.size()) != text.size())
    return std::nullopt;
  return units;
}

// The string has its length from the start: growing would leave a copy of a secret behind.
std::optional<std::string> NSUTF8FromUTF16(std::u16string_view text) {
  std::string bytes(unicode().utf8Length(text.data(), text.size()), '\0');
  if (unicode().utf8FromUTF16(text.data(), text.size(), bytes.data(), bytes.size()) != text.size())
    return std::nullopt;
  return bytes;
}
