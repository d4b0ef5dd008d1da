#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>

#include "Foundation/NSUnicode.h"
#include "Foundation/kernels/ASCII.h"
#include "tests/support/GuardedBuffer.h"

namespace {

using namespace std::string_literals;
using NSKernels::UnicodeKernels;

constexpr std::size_t threeWidths = 3 * 64 + 9;  // of the widest vector, and some
constexpr std::size_t alignments = 64;

/// The rules, one character at a time: a sequence is well-formed if it is what some character is encoded as.
std::string bytesOf(char32_t value) {
  const auto byte = [value](unsigned tag, int shift) {
    return static_cast<char>(tag | (value >> shift & (tag == 0x80 ? 0x3F : 0xFF)));
  };
  if (value < 0x80) return {byte(0, 0)};
  if (value < 0x800) return {byte(0xC0, 6), byte(0x80, 0)};
  if (value < 0x10000) return {byte(0xE0, 12), byte(0x80, 6), byte(0x80, 0)};
  return {byte(0xF0, 18), byte(0x80, 12), byte(0x80, 6), byte(0x80, 0)};
}

std::u16string unitsOf(char32_t value) {
  if (value < 0x10000) return {static_cast<char16_t>(value)};
  return {static_cast<char16_t>(0xD7C0 + (value >> 10)), static_cast<char16_t>(0xDC00 | (value & 0x3FF))};
}

bool isCharacter(char32_t value) { return value < 0xD800 || (value > 0xDFFF && value < 0x110000); }

/// What a text converts to, nothing if it has a fault, and the place of the first fault or the end.
template <class From, class To>
struct Conversion {
  std::basic_string<To> result{};
  std::size_t place = 0;
  bool operator==(const Conversion&) const = default;
};
using FromUTF8 = Conversion<char, char16_t>;
using FromUTF16 = Conversion<char16_t, char>;

std::optional<char32_t> characterAt(const std::string& text, std::size_t at, std::size_t length) {
  constexpr unsigned leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t value = 0;
  for (std::size_t i = 0; i < length && at + i < text.size(); ++i)
    value = value << 6 | (static_cast<unsigned char>(text[at + i]) & (i == 0 ? leadBits[length] : 0x3F));
  if (!isCharacter(value) || text.compare(at, length, bytesOf(value)) != 0) return std::nullopt;
  return value;
}

FromUTF8 byRule(const std::string& text) {
  FromUTF8 found;
  while (found.place < text.size()) {
    const std::size_t before = found.place;
    for (std::size_t length = 1; length <= 4 && found.place == before; ++length) {
      const auto value = characterAt(text, found.place, length);
      if (!value) continue;
      found.result += unitsOf(*value);
      found.place += length;
    }
    if (found.place == before) return {{}, before};
  }
  return found;
}

FromUTF16 byRule(const std::u16string& text) {
  FromUTF16 found;
  while (found.place < text.size()) {
    char32_t value = text[found.place];
    if (value >= 0xD800 && value < 0xDC00 && found.place + 1 < text.size())
      value = (value << 10) + text[found.place + 1] - 0x35FDC00;
    const std::u16string units = unitsOf(value);
    if (!isCharacter(value) || units != text.substr(found.place, units.size())) return {{}, found.place};
    found.result += bytesOf(value);
    found.place += units.size();
  }
  return found;
}

class KernelsUnicode : public testing::TestWithParam<const UnicodeKernels*> {
 protected:
  const UnicodeKernels& kernels = *GetParam();
  const GuardedBuffer<char> bytes{4096};
  const GuardedBuffer<char16_t> units{4096};

  /// Converts from memory and into room that end `gap` units before a page that nobody may touch; from memory
  /// that begins after one if there is no gap.
  FromUTF8 convert(const std::string& text, std::size_t gap = 0) const {
    return converted<FromUTF8>(text, gap, bytes, units, kernels.utf16Length, kernels.utf16FromUTF8);
  }
  FromUTF16 convert(const std::u16string& text, std::size_t gap = 0) const {
    return converted<FromUTF16>(text, gap, units, bytes, kernels.utf8Length, kernels.utf8FromUTF16);
  }

 private:
  template <class Found, class Unit, class Other, class Length, class Convert>
  Found converted(const std::basic_string<Unit>& text, std::size_t gap, const GuardedBuffer<Unit>& source,
                  const GuardedBuffer<Other>& target, Length* length, Convert* run) const {
    const auto from = gap % 2 == 0 ? source.first(text.size(), gap / 2) : source.last(text.size(), gap / 2);
    std::copy(text.begin(), text.end(), from.begin());
    const std::size_t room = length(from.data(), from.size());
    const auto to = target.last(room, gap);
    target.fill(Other('~'));
    Found found{{}, run(from.data(), from.size(), to.data(), room)};
    EXPECT_TRUE(target.isFilledAround(to, Other('~')));
    if (found.place == text.size()) found.result.assign(to.begin(), to.end());
    return found;
  }
};

/// Characters of `kinds` lengths in turn, at random, the edges of each length among them.
std::string mixture(const std::string& kinds, std::size_t length, unsigned seed) {
  constexpr char32_t first[] = {0, 0x80, 0x800, 0x10000}, last[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
  std::mt19937 random(seed);
  std::string text;
  while (text.size() < length) {
    const auto kind = static_cast<std::size_t>(kinds[random() % kinds.size()] - '1');
    const char32_t range = last[kind] - first[kind] + 1, edge = static_cast<char32_t>(random() % 4);
    const char32_t value = edge == 0   ? first[kind]
                           : edge == 1 ? last[kind]
                                       : first[kind] + static_cast<char32_t>(random() % range);
    if (isCharacter(value) && text.size() + bytesOf(value).size() <= length) text += bytesOf(value);
    if (text.size() + kind >= length) text.resize(length, '.');
  }
  return text;
}

constexpr const char* languages[] = {"1", "11111112", "2", "1223", "3", "4", "1234"};

TEST_P(KernelsUnicode, ConvertsEveryCharacterBothWays) {
  for (char32_t value = 0; value < 0x110000;) {
    FromUTF8 text;
    FromUTF16 back;
    for (; value < 0x110000 && text.place < 1000; ++value) {
      if (!isCharacter(value)) continue;
      text.result += unitsOf(value);
      text.place = (back.result += bytesOf(value)).size();
    }
    back.place = text.result.size();
    ASSERT_EQ(convert(back.result), text) << "before " << static_cast<unsigned>(value);
    ASSERT_EQ(convert(text.result), back) << "before " << static_cast<unsigned>(value);
  }
}

TEST_P(KernelsUnicode, GoesBothWaysAtEveryLengthAndAlignmentWithinBounds) {
  for (const std::string language : languages)
    for (std::size_t length = 0; length <= threeWidths; ++length) {
      const std::string text = mixture(language, length, static_cast<unsigned>(length));
      const FromUTF8 expected = byRule(text);
      ASSERT_EQ(expected.place, length);
      for (std::size_t gap = length % 5; gap<alignments; gap += language.size()> 4 ? 3 : 13) {
        ASSERT_EQ(convert(text, gap), expected) << language << ", " << length << " bytes, gap " << gap;
        ASSERT_EQ(convert(expected.result, gap), (FromUTF16{text, expected.result.size()}))
            << language << ", " << length << " bytes, gap " << gap;
      }
    }
}

/// A byte or code unit that may not be there, or that makes its neighbours so, at every position in turn.
TEST_P(KernelsUnicode, RefusesAFaultAtEveryPositionAndSaysWhere) {
  const std::string wrongBytes =
      "\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF4\xF5\xFF"
      "a\0"s;
  const std::u16string wrongUnits = u"\xD800\xDBFF\xDC00\xDFFF";
  std::size_t turn = 0;
  for (const std::string language : languages)
    for (std::size_t length = 1; length <= threeWidths; ++length) {
      std::string text = mixture(language, length, static_cast<unsigned>(length));
      for (std::size_t at = turn % 3; at < text.size(); at += 3) {
        const char good = std::exchange(text[at], wrongBytes[++turn % wrongBytes.size()]);
        ASSERT_EQ(convert(text), byRule(text))
            << language << ", " << length << " bytes, fault " << turn << " at " << at;
        text[at] = good;
      }
      std::u16string wide = byRule(text).result;
      for (std::size_t at = turn % 3; at < wide.size(); at += 3) {
        const char16_t good = std::exchange(wide[at], wrongUnits[++turn % wrongUnits.size()]);
        ASSERT_EQ(convert(wide), byRule(wide))
            << language << ", " << length << " bytes, fault " << turn << " at " << at;
        wide[at] = good;
      }
    }
}

TEST_P(KernelsUnicode, JudgesEveryPairOfBytesWhereverItStands) {
  for (const std::size_t before : {0U, 15U, 31U, 60U, 62U})
    for (unsigned lead = 0xC0; lead <= 0xFF; ++lead)
      for (unsigned next = 0; next <= 0xFF; ++next) {
        const std::string text = std::string(before, 'x') + static_cast<char>(lead) +
                                 static_cast<char>(next) + "\x80\x80" + std::string(64, 'x');
        ASSERT_EQ(convert(text).place, byRule(text).place) << before << " before " << lead << ", " << next;
      }
}

TEST_P(KernelsUnicode, CountsASCIIUpToTheFirstOtherAndUnitsUpToTheFirstEqual) {
  std::string ascii = mixture("1", threeWidths, 1);
  std::replace(ascii.begin(), ascii.end(), '\0', '.');  // what lies beyond the end must not count as NUL
  for (std::size_t length = 0; length <= threeWidths; ++length)
    for (std::size_t at = 0; at <= length; at += length < 70 ? 1 : 7) {
      const auto narrow = bytes.last(length, at % alignments);
      const auto wide = units.last(length, at % alignments);
      std::copy_n(ascii.begin(), length, narrow.begin());
      std::copy_n(ascii.begin(), length, wide.begin());
      if (at < length) narrow[at] = at % 2 ? '\x80' : '\xFF';
      if (at < length) wide[at] = u"\x80\x100\x7F80\x8000\xFF7F"[at % 5];
      ASSERT_EQ(kernels.asciiBytes(narrow.data(), length), at);
      ASSERT_EQ(kernels.asciiUnits(wide.data(), length), at);
      ASSERT_EQ(NSIsASCII(std::string_view(narrow.data(), length)), at == length) << length << ", " << at;
      ASSERT_EQ(kernels.unitsBefore(wide.data(), length, at < length ? wide[at] : u'\0'), at);
    }
}

/// Strings take short ASCII without a kernel, in parts that overlap.
TEST(KernelsASCII, CopiesBytesOfEveryLengthWithinBounds) {
  const GuardedBuffer<char> source(4096), target(4096);
  const std::string ascii = mixture("1", threeWidths, 2);
  target.fill('\x80');
  for (std::size_t length = 0; length <= threeWidths; ++length) {
    const auto from = length % 2 == 0 ? source.first(length) : source.last(length);
    const auto to = length % 2 == 0 ? target.last(length) : target.first(length);
    std::copy_n(ascii.begin(), length, from.begin());
    NSKernels::copy({from.data(), length}, to.data());
    ASSERT_TRUE(target.isFilledAround(to, '\x80')) << length;
    ASSERT_EQ(std::string(to.begin(), to.end()), ascii.substr(0, length));
    std::fill(to.begin(), to.end(), '\x80');
  }
}

INSTANTIATE_TEST_SUITE_P(EverySet, KernelsUnicode, testing::ValuesIn(NSKernels::availableUnicodeKernels()),
                         [](const auto& param) { return param.param->name; });

}  // namespace
