#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/GuardedBuffer.h"
#include "tests/support/KernelsTests.h"
#include "tests/support/Notations.h"
#include "tests/support/Support.h"

namespace {

using namespace KernelsTests;

class KernelsRadix : public ::testing::TestWithParam<std::tuple<Set, Notation>> {
 protected:
  const VXKernels::CodecKernels& kernels = *std::get<0>(GetParam());
  const Notation notation = std::get<1>(GetParam());
};

/// What the coreutils make of the bytes.
std::string basenc(const std::string& notation, std::span<const std::byte> bytes) {
  const auto file = std::filesystem::temp_directory_path() / ("vx-basenc-" + std::to_string(getpid()));
  std::ofstream(file, std::ios::binary) << asText(bytes);
  const std::string text = outputOf("basenc -w0 --" + notation + " " + file.string());
  std::filesystem::remove(file);
  return text;
}

TEST_P(KernelsRadix, EncodesLikeIndependentCode) {
  const auto source = randomBytes(16u << 20, 1);
  const std::span<const std::byte> bytes = source;
  for (const unsigned length :
       {0u, 1u, 2u, 3u, 4u, 5u, 39u, 40u, 41u, 79u, 80u, 81u, 4093u, 65536u, 16u << 20})
    ASSERT_TRUE(notation.encoded(kernels, bytes.first(length)) == basenc(notation.name, bytes.first(length)))
        << length;
  const std::string_view text = asText(bytes.first(4096));
  const std::string whole = notation.encodedByRule(text);
  const std::size_t groupBytes = notation.group * notation.bits / 8;
  for (std::size_t length = 0; length <= text.size(); ++length) {
    const std::size_t groups = length / groupBytes, start = groups * groupBytes;
    ASSERT_EQ(
        notation.encoded(kernels, bytes.first(length)),
        whole.substr(0, groups * notation.group) + notation.encodedByRule(text.substr(start, length - start)))
        << length;
  }
}

TEST_P(KernelsRadix, GoesBothWaysAtEveryLengthAndAlignmentWithinBounds) {
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
      ASSERT_TRUE(text.isFilledBeside(written, '?')) << length << " bytes, gap " << gap;

      result.fill(std::byte{0xA5});
      const auto digits = text.last(notation.digits(length), gap);
      std::copy_n(expected.begin(), digits.size(), digits.begin());
      const auto back = result.last(length, gap);
      ASSERT_TRUE((kernels.*notation.kernel).decode(digits.data(), digits.size(), back.data()));
      ASSERT_EQ(asText(back), asText(from)) << length << " bytes, gap " << gap;
      ASSERT_TRUE(result.isFilledBeside(back, std::byte{0xA5})) << length << " bytes, gap " << gap;
    }
  }
}

/// Of one length every character at every position, of the others one in a hundred.
TEST_P(KernelsRadix, TakesTheDigitsAndNoOtherCharacterAtEveryPosition) {
  for (std::size_t bytes = 1; bytes <= threeWidths; ++bytes) {
    std::string text = notation.encoded(kernels, randomBytes(bytes, static_cast<unsigned>(bytes)));
    text.resize(notation.digits(bytes));
    const std::size_t step = bytes == 120 ? 1 : 101;
    for (std::size_t at = 0; at < text.size(); ++at) {
      const char good = text[at];
      for (std::size_t c = (at + bytes) % step; c < 256; c += step) {
        text[at] = static_cast<char>(c);
        ASSERT_EQ(bool(notation.decoded(kernels, text)), bool(notation.bytesOfDigits({text[at]})))
            << bytes << " bytes, character " << c << " at " << at;
      }
      text[at] = good;
    }
  }
}

/// Every value of the last digit, its bits that fill no byte included.
TEST_P(KernelsRadix, DropsTheBitsThatFillNoByte) {
  for (std::size_t bytes = 1; bytes <= 100; ++bytes) {
    std::string text(notation.digits(bytes), notation.alphabet[0]);
    for (const char last : notation.alphabet) {
      text.back() = last;
      const auto found = notation.decoded(kernels, text);
      ASSERT_TRUE(found) << bytes << " bytes, last digit " << last;
      ASSERT_EQ(asText(*found), notation.bytesOfDigits(text)) << bytes << " bytes, last digit " << last;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EverySet, KernelsRadix,
                         ::testing::Combine(everySet(), ::testing::ValuesIn(notations)),
                         [](const auto& param) {
                           return std::get<0>(param.param)->name + ("_" + std::get<1>(param.param).name);
                         });

}  // namespace
