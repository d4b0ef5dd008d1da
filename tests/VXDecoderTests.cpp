#include "tests/support/CodecTests.h"
#include "tests/support/Pieces.h"

namespace Pieces {

std::ostream& operator<<(std::ostream& stream, const Decoded& decoded) {
  return stream << (decoded.bytes ? "bytes: " + *decoded.bytes
                                  : "refused at " + std::to_string(*decoded.refusal));
}

}  // namespace Pieces

namespace {

class VXDecoderTests : public CodecTest {};

TEST_P(VXDecoderTests, DecodeOrRefuseEveryShortTextHoweverItIsSplit) {
  const struct {
    std::size_t coder;
    std::string_view alphabet;
    std::size_t length;
  } domains[] = {{0, "A=\n", 6}, {0, "z9+/-_=\xC3", 3}, {1, "B=", 10},  {1, "A7=a", 4},  {2, "aF=g", 4},
                 {3, "A=+", 6},  {3, "-_/=", 4},        {4, "%4Fg", 5}, {4, "%0\xFF", 6}};
  for (const auto& domain : domains)
    for (std::size_t length = 0; length <= domain.length; ++length)
      forEveryString(domain.alphabet, length, [&](const std::string& text) {
        const auto& coder = Pieces::coders[domain.coder];
        const auto expected = Pieces::decodedByRule(coder, text);
        Pieces::forEverySplit(length, [&](const Pieces::Ends& ends) {
          ASSERT_EQ(Pieces::decoded(coder, text, ends), expected) << coder.name << " " << text;
        });
      });
}

TEST_P(VXDecoderTests, DecodeOrRefuseLongTextsHoweverTheyAreSplit) {
  std::mt19937 random(2);
  for (const auto& coder : std::span(Pieces::coders).first(5))
    for (unsigned seed = 0; seed < 60; ++seed) {
      std::string bytes(random() % 12000, '\0');
      for (char& byte : bytes) byte = static_cast<char>(random() % 3 ? 'a' + random() % 26 : random());
      std::string text = *coder.encode(bytes);
      if (seed % 3 > 0 && !text.empty()) text[random() % text.size()] = "!%=\n\x80"[random() % 5];
      SCOPED_TRACE(coder.name + ", text of " + std::to_string(text.size()));
      Pieces::compare(coder, text, seed);
    }
}

TEST_P(VXDecoderTests, AppendBytesThatAreASecretIfTheTextIs) {
  for (const bool secret : {true, false}) {
    const auto bytes = NSMutableData::dataWithBytes("<", 1), rest = NSMutableData::data();
    VXDecoder decoder(VXNotation::base64URL);
    EXPECT_TRUE(
        decoder.update(*NSData::dataWithBytes(std::as_bytes(std::span("Zm9vYg", 6)), secret), *bytes));
    EXPECT_TRUE(decoder.finish(*rest));
    EXPECT_EQ(bytesOf(bytes), "<foo");
    EXPECT_EQ(bytesOf(rest), "b");
    EXPECT_EQ(bytes->holdsSecret() && rest->holdsSecret(), secret);
    EXPECT_EQ(bytes->holdsSecret() || rest->holdsSecret(), secret);
  }
}

INSTANTIATE_FOR_EVERY_SET(VXDecoderTests);

TEST(VXDecoderTests, RaiseForMisuseAndStayRefused) {
  std::array<std::byte, 9> room{};
  const auto text = NSMutableData::dataWithBytes("Zm9v!", 5);
  EXPECT_EQ(raised([] { VXDecoder decoder(VXNotation::base2); }), "NSInvalidArgumentException");
  VXDecoder decoder(VXNotation::base64);
  EXPECT_EQ(raised([&] { decoder.update(text->bytes(), std::span(room).first(5)); }), "NSRangeException");
  EXPECT_EQ(raised([&] { decoder.update(*text, *text); }), "NSInvalidArgumentException");
  EXPECT_FALSE(decoder.refusal()) << "what was refused has changed nothing";
  const auto bytes = NSMutableData::data();
  EXPECT_FALSE(decoder.update(*text, *bytes) || decoder.update(*dataOf("Zm9v"), *bytes) ||
               decoder.finish(*bytes));
  EXPECT_EQ(bytes->length(), 0u);
  EXPECT_EQ(decoder.refusal(), 4u);
  EXPECT_EQ(raised([&] { decoder.finish(room); }), "NSInternalInconsistencyException");
}

}  // namespace
