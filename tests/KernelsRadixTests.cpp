#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "GuardedBuffer.h"
#include "KernelsTests.h"
#include "VXFoundation/kernels/Radix.h"

namespace {

using namespace KernelsTests;
using VXKernels::CodecKernels;

struct Notation {
  const char* name;
  const VXKernels::Radix* radix;
  VXKernels::Encode* CodecKernels::*encode;
  VXKernels::Decode* CodecKernels::*decode;

  std::size_t textLength(std::size_t bytes) const {
    return (bytes + radix->groupBytes - 1) / radix->groupBytes * radix->groupDigits;
  }
  std::size_t digits(std::size_t bytes) const { return (bytes * 8 + radix->bits - 1) / radix->bits; }
  bool isDigit(char c) const {
    const char upper = radix->eitherCase && c >= 'a' && c <= 'z' ? static_cast<char>(c - 0x20) : c;
    return c != '\0' && std::string_view(radix->alphabet).find(upper) != std::string_view::npos;
  }
};

constexpr Notation notations[] = {
    {"base64", &VXKernels::base64, &CodecKernels::base64Encode, &CodecKernels::base64Decode},
    {"base32", &VXKernels::base32, &CodecKernels::base32Encode, &CodecKernels::base32Decode},
    {"base16", &VXKernels::base16, &CodecKernels::base16Encode, &CodecKernels::base16Decode},
};

class KernelsRadix : public ::testing::TestWithParam<std::tuple<Set, Notation>> {
 protected:
  const CodecKernels& kernels = *std::get<0>(GetParam());
  const Notation notation = std::get<1>(GetParam());

  std::string encode(std::span<const std::byte> bytes) const {
    std::string text(notation.textLength(bytes.size()), '?');
    (kernels.*notation.encode)(bytes.data(), bytes.size(), text.data());
    return text;
  }
  bool decode(std::span<const char> digits, std::span<std::byte> bytes) const {
    return (kernels.*notation.decode)(digits.data(), digits.size(), bytes.data());
  }
};

/// What the coreutils make of the bytes.
std::string basenc(const char* notation, std::span<const std::byte> bytes) {
  const auto file = std::filesystem::temp_directory_path() / ("vx-basenc-" + std::to_string(getpid()));
  std::ofstream(file, std::ios::binary) << asText(bytes);
  FILE* pipe = popen(("basenc -w0 --" + std::string(notation) + " " + file.string()).c_str(), "r");
  std::string text(bytes.size() * 2 + 16, '\0');
  text.resize(fread(text.data(), 1, text.size(), pipe));
  EXPECT_EQ(pclose(pipe), 0);
  std::filesystem::remove(file);
  return text;
}

/// What OpenSSL makes of them, for the notations that it has.
std::string openssl(const Notation& notation, std::span<const std::byte> bytes) {
  std::string text(notation.textLength(bytes.size()) + 1, '\0');
  const auto* from = reinterpret_cast<const unsigned char*>(bytes.data());
  if (notation.radix->bits == 6)
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), from, static_cast<int>(bytes.size()));
  else if (!bytes.empty())
    OPENSSL_buf2hexstr_ex(text.data(), text.size(), nullptr, from, bytes.size(), '\0');
  text.pop_back();
  return text;
}

TEST_P(KernelsRadix, EncodesLikeIndependentCode) {
  const bool haveOpenSSL = notation.radix->bits != 5;
  const auto source = randomBytes(16u << 20, 1);
  const std::span<const std::byte> bytes = source;
  for (std::size_t length = 0; haveOpenSSL && length <= 4096; ++length)
    ASSERT_EQ(encode(bytes.last(length)), openssl(notation, bytes.last(length))) << length;
  for (const unsigned length :
       {0u, 1u, 2u, 3u, 4u, 5u, 39u, 40u, 41u, 79u, 80u, 81u, 4093u, 65536u, 16u << 20})
    ASSERT_TRUE(encode(bytes.first(length)) == basenc(notation.name, bytes.first(length))) << length;
}

TEST_P(KernelsRadix, GoesBothWaysAtEveryLengthAndAlignmentWithinBounds) {
  const GuardedBuffer<std::byte> source(1024), result(1024);
  const GuardedBuffer<char> text(1024);
  const auto bytes = randomBytes(threeWidths, 2);
  for (std::size_t length = 0; length <= threeWidths; ++length) {
    const std::string expected = [&] {
      std::string wanted(notation.textLength(length), '?');
      const CodecKernels& scalar = *VXKernels::availableKernels().front();
      (scalar.*notation.encode)(bytes.data(), length, wanted.data());
      return wanted;
    }();
    for (std::size_t gap = 0; gap < alignments; ++gap) {
      const auto from = source.last(length, gap);
      std::copy_n(bytes.begin(), length, from.begin());
      std::fill(text.all().begin(), text.all().end(), '?');
      const auto written = text.last(notation.textLength(length), gap);
      (kernels.*notation.encode)(from.data(), length, written.data());
      ASSERT_EQ(std::string_view(written.data(), written.size()), expected)
          << length << " bytes, gap " << gap;
      const auto kept = static_cast<std::size_t>(std::count(text.all().begin(), text.all().end(), '?'));
      ASSERT_EQ(kept, text.all().size() - written.size());

      std::fill(result.all().begin(), result.all().end(), std::byte{0xA5});
      const auto digits = text.last(notation.digits(length), gap);
      std::copy_n(expected.begin(), digits.size(), digits.begin());
      const auto back = result.last(length, gap);
      ASSERT_TRUE(decode(digits, back)) << length << " bytes, gap " << gap;
      ASSERT_TRUE(std::equal(back.begin(), back.end(), bytes.begin())) << length << " bytes, gap " << gap;
      const auto untouched = result.all().first(result.all().size() - gap - length);
      ASSERT_TRUE(
          std::all_of(untouched.begin(), untouched.end(), [](auto b) { return b == std::byte{0xA5}; }));
      ASSERT_TRUE(gap == 0 || result.last(1)[0] == std::byte{0xA5});
    }
  }
}

TEST_P(KernelsRadix, RefusesAFaultAtEveryPosition) {
  const char hostile[] = {'=', '\n', ' ', '-', '_', '\0', '\x80', '\xC1', '@', '[', '`', '{', '/' - 1, ':'};
  for (std::size_t bytes = 1; bytes <= threeWidths; ++bytes) {
    std::string text = encode(randomBytes(bytes, static_cast<unsigned>(bytes)));
    text.resize(notation.digits(bytes));
    std::vector<std::byte> room(bytes);
    for (std::size_t at = 0; at < text.size(); ++at) {
      const char fault = hostile[(at + bytes) % std::size(hostile)];
      const char good = std::exchange(text[at], fault);
      ASSERT_EQ(decode(text, room), notation.isDigit(fault)) << bytes << " bytes, at " << at;
      text[at] = good;
    }
  }
}

TEST_P(KernelsRadix, TakesTheDigitsAndNoOtherCharacterAtEveryPosition) {
  std::string text = encode(randomBytes(120, 3));
  std::vector<std::byte> room(120);
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char good = text[at];
    for (int c = -128; c < 128; ++c) {
      text[at] = static_cast<char>(c);
      ASSERT_EQ(decode(text, room), notation.isDigit(text[at])) << "character " << c << " at " << at;
    }
    text[at] = good;
  }
}

/// Every value of the last digit, its bits that fill no byte included, decodes as the scalar kernel has it.
TEST_P(KernelsRadix, DropsTheBitsThatFillNoByte) {
  const CodecKernels& scalar = *VXKernels::availableKernels().front();
  for (std::size_t bytes = 1; bytes <= 100; ++bytes) {
    std::string text(notation.digits(bytes), notation.radix->alphabet[0]);
    for (const char* last = notation.radix->alphabet; *last != '\0'; ++last) {
      text.back() = *last;
      std::vector<std::byte> found(bytes), expected(bytes);
      ASSERT_TRUE(decode(text, found));
      (scalar.*notation.decode)(text.data(), text.size(), expected.data());
      ASSERT_EQ(found, expected) << bytes << " bytes, last digit " << *last;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EverySet, KernelsRadix,
                         ::testing::Combine(everySet(), ::testing::ValuesIn(notations)),
                         [](const auto& param) {
                           return std::string(std::get<0>(param.param)->name) + "_" +
                                  std::get<1>(param.param).name;
                         });

}  // namespace
