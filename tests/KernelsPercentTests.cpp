#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

#include "tests/support/Bytes.h"
#include "tests/support/GuardedBuffer.h"
#include "tests/support/KernelsTests.h"

namespace {

using namespace KernelsTests;

/// The rules, applied byte by byte with functions of the C library.
std::string encodedByRule(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned char>(byte));
    const bool plain = std::isalnum(static_cast<unsigned char>(byte)) || (byte && std::strchr("-._~", byte));
    text += plain ? std::string(1, byte) : escape;
  }
  return text;
}

Bytes decodedByRule(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    bytes.push_back(text[i]);
    if (text[i] != '%') continue;
    const std::string digits(text.substr(i + 1, 2));
    if (digits.size() < 2 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
      return {};
    bytes.back() = static_cast<char>(std::stoi(digits, nullptr, 16));
    i += 2;
  }
  return bytes;
}

class KernelsPercent : public ::testing::TestWithParam<Set> {
 protected:
  const VXKernels::CodecKernels& kernels = *GetParam();
  const GuardedBuffer<std::byte> source{4096}, target{4096};

  Bytes run(VXKernels::PercentDecode* kernel, std::string_view text, std::size_t room,
            std::size_t gap) const {
    const auto from = source.last(text.size(), gap);
    if (!text.empty()) std::memcpy(from.data(), text.data(), text.size());
    const auto to = target.last(room, gap);
    const std::size_t count = kernel(from.data(), from.size(), to.data());
    return count == VXKernels::malformed ? Bytes() : std::string(asText(to.first(count)));
  }
  Bytes encode(std::string_view bytes, std::size_t gap = 0) const {
    return run(kernels.percentEncode, bytes, 3 * bytes.size(), gap);
  }
  Bytes decode(std::string_view text, std::size_t gap = 0) const {
    return run(kernels.percentDecode, text, text.size(), gap);
  }
};

/// Returns bytes of which about `any` per cent may be any byte; the others need no escape.
std::string mixture(std::size_t length, unsigned any, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes;
  while (bytes.size() < length)
    bytes.push_back(random() % 100 < any ? static_cast<char>(random()) : "abcXYZ0189-._~"[random() % 14]);
  return bytes;
}

TEST_P(KernelsPercent, DecodesEveryPairAfterAPercentSignNearBlockEnds) {
  for (const unsigned before : {0u, 13u, 14u, 15u, 29u, 30u, 31u, 61u, 62u, 63u, 125u, 126u, 127u})
    for (int pair = 0; pair < 65536; ++pair) {
      std::string text(before, 'x');
      text += {'%', static_cast<char>(pair >> 8), static_cast<char>(pair)};
      ASSERT_EQ(decode(text), decodedByRule(text)) << before << " bytes before pair " << pair;
    }
}

TEST_P(KernelsPercent, RoundTripsAtEveryLengthAndAlignmentWithinBounds) {
  for (const unsigned any : {0u, 3u, 50u, 100u})
    for (std::size_t length = 0; length <= threeWidths; ++length) {
      const std::string bytes = mixture(length, any, static_cast<unsigned>(length));
      const std::string text = encodedByRule(bytes);
      for (std::size_t gap = 0; gap < alignments; gap += any == 50 ? 1 : 7) {
        ASSERT_EQ(encode(bytes, gap), text) << length << " bytes, gap " << gap;
        ASSERT_EQ(decode(text, gap), bytes) << length << " bytes, gap " << gap;
      }
    }
}

TEST_P(KernelsPercent, RejectsInvalidInputAtEveryPosition) {
  for (std::size_t length = 1; length <= threeWidths; ++length) {
    std::string text = encodedByRule(mixture(length, 40, static_cast<unsigned>(length)));
    for (std::size_t at = 0; at < text.size(); ++at)
      for (const char fault : {'%', 'g', '\x80', '\0'}) {
        const char good = std::exchange(text[at], fault);
        ASSERT_EQ(decode(text), decodedByRule(text)) << length << " bytes, at " << at;
        text[at] = good;
      }
  }
}

INSTANTIATE_TEST_SUITE_P(EverySet, KernelsPercent, everySet(),
                         [](const auto& param) { return param.param->name; });

}  // namespace
