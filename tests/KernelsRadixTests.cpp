#include <algorithm>

#include "tests/support/GuardedBuffer.h"
#include "tests/support/KernelsTests.h"
#include "tests/support/Notations.h"

namespace {

using namespace KernelsTests;

class KernelsRadix : public ::testing::TestWithParam<std::tuple<Set, Notation>> {
 protected:
  const VXKernels::CodecKernels& kernels = *std::get<0>(GetParam());
  const Notation notation = std::get<1>(GetParam());
};

TEST_P(KernelsRadix, RoundTripsLongInputs) {
  for (const unsigned length : {4093u, 65'536u, 100'001u}) {
    const auto bytes = randomBytes(length, 1);
    const std::string text = notation.encoded(kernels, bytes);
    ASSERT_TRUE(text == notation.encodedByRule(asText(bytes))) << length;
    ASSERT_TRUE(notation.decoded(kernels, text.substr(0, notation.digits(length))) == bytes) << length;
  }
}

TEST_P(KernelsRadix, RoundTripsAtEveryLengthAndAlignmentWithinBounds) {
  const GuardedBuffer<std::byte> source(1024), result(1024);
  const GuardedBuffer<char> text(1024);
  const auto bytes = randomBytes(threeWidths, 2);
  for (std::size_t length = 0; length <= threeWidths; ++length) {
    const std::string expected = notation.encodedByRule(asText(bytes).substr(0, length));
    for (std::size_t gap = 0; gap < alignments; ++gap) {
      const auto from = source.last(length, gap);
      std::copy_n(bytes.begin(), length, from.begin());
      text.fill('?');
      const auto written = text.last(expected.size(), gap);
      (kernels.*notation.kernel).encode(from.data(), length, written.data());
      ASSERT_EQ(std::string_view(written.data(), written.size()), expected)
          << length << " bytes, gap " << gap;
      ASSERT_TRUE(text.isFilledAround(written, '?')) << length << " bytes, gap " << gap;

      result.fill(std::byte{0xA5});
      const auto digits = text.last(notation.digits(length), gap);
      std::copy_n(expected.begin(), digits.size(), digits.begin());
      const auto back = result.last(length, gap);
      ASSERT_TRUE((kernels.*notation.kernel).decode(digits.data(), digits.size(), back.data()));
      ASSERT_EQ(asText(back), asText(from)) << length << " bytes, gap " << gap;
      ASSERT_TRUE(result.isFilledAround(back, std::byte{0xA5})) << length << " bytes, gap " << gap;
    }
  }
}

/// Every character at every position of one length, and at the end of all lengths, where bits that fill no
/// byte are dropped; one character in a hundred elsewhere.
TEST_P(KernelsRadix, DecodesDigitsAndRejectsOtherCharactersAtEveryPosition) {
  for (std::size_t bytes = 1; bytes <= threeWidths; ++bytes) {
    std::string text = notation.encoded(kernels, randomBytes(bytes, static_cast<unsigned>(bytes)));
    text.resize(notation.digits(bytes));
    for (std::size_t at = 0; at < text.size(); ++at) {
      const char good = text[at];
      const bool last = at + 1 == text.size();
      const std::size_t step = bytes == 120 || last ? 1 : 101;
      for (std::size_t c = (at + bytes) % step; c < 256; c += step) {
        text[at] = static_cast<char>(c);
        const auto found = notation.decoded(kernels, text);
        ASSERT_EQ(bool(found), bool(notation.bytesOfDigits({text[at]})))
            << bytes << " bytes, character " << c << " at " << at;
        if (found && last) {
          ASSERT_EQ(asText(*found), notation.bytesOfDigits(text)) << bytes << " bytes";
        }
      }
      text[at] = good;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EverySet, KernelsRadix,
                         ::testing::Combine(everySet(), ::testing::ValuesIn(notations)),
                         [](const auto& param) {
                           return std::get<0>(param.param)->name + ("_" + std::get<1>(param.param).name);
                         });

}  // namespace
