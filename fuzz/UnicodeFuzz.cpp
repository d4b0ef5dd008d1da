#include <Foundation/NSString.h>

#include "Foundation/kernels/UnicodeDispatch.h"
#include "tests/support/Fuzz.h"

// UTF-8 and UTF-16: every set of kernels converts what the scalar one does, in room of exactly the length
// that it asks for, and refuses the rest at the same place.
namespace {

template <class Unit, class Other>
struct Converted {
  std::size_t place;
  std::vector<Other> result;
  bool operator==(const Converted&) const = default;
};

template <class Unit, class Other, class Length, class Convert>
Converted<Unit, Other> converted(const std::vector<Unit>& text, Length* length, Convert* convert) {
  std::vector<Other> result(length(text.data(), text.size()));
  const std::size_t place = convert(text.data(), text.size(), result.data(), result.size());
  fuzzRequire(place <= text.size(), "a fault is in the text");
  if (place < text.size()) result.clear();
  return {place, result};
}

auto converted(const NSKernels::UnicodeKernels& kernels, const std::vector<char>& text) {
  return converted<char, char16_t>(text, kernels.utf16Length, kernels.utf16FromUTF8);
}
auto converted(const NSKernels::UnicodeKernels& kernels, const std::vector<char16_t>& text) {
  return converted<char16_t, char>(text, kernels.utf8Length, kernels.utf8FromUTF16);
}

template <class Unit>
void compareKernels(const std::vector<Unit>& text) {
  const auto sets = NSKernels::availableUnicodeKernels();
  const auto expected = converted(*sets[0], text);
  if (expected.place == text.size())
    fuzzRequire(converted(*sets[0], expected.result).result == text, "what is converted comes back");
  for (const auto* set : sets.subspan(1))
    fuzzRequire(converted(*set, text) == expected, "all kernels convert and refuse alike");
}

/// A string takes ASCII by another way, which the kernels know nothing of.
void compareString(const std::vector<char>& bytes) {
  const std::string_view text(bytes.data(), bytes.size());
  const auto& scalar = *NSKernels::availableUnicodeKernels()[0];
  const NSRefPtr<NSString> string = NSString::stringWithUTF8String(text);
  const bool isWellFormed = converted(scalar, bytes).place == text.size();
  fuzzRequire((string != nullptr) == isWellFormed, "a string refuses what the scalar kernel does");
  if (!string) return;
  fuzzRequire(string->UTF8String() == text, "a string is what it was made of");
  fuzzRequire(string->isASCII() == (scalar.asciiBytes(text.data(), text.size()) == text.size()),
              "ASCII alone is stored as ASCII");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<char> bytes(data, data + size);
  compareKernels(bytes);
  compareString(bytes);
  std::vector<char16_t> units;
  for (std::size_t i = 0; i + 1 < size; i += 2)
    units.push_back(static_cast<char16_t>(data[i] | data[i + 1] << 8));
  compareKernels(units);
  return 0;
}
