#include "tests/support/CodecTests.h"
#include "tests/support/Pieces.h"

namespace {

class VXEncoderTests : public CodecTest {};

TEST_P(VXEncoderTests, WriteTheWholeTextHoweverTheBytesAreSplit) {
  std::mt19937 random(1);
  std::string bytes(20000, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random() % 3 ? 'a' + random() % 26 : random());
  for (const auto& coder : Pieces::coders) {
    for (std::size_t length = 0; length <= 11; ++length) {
      const auto start = std::string_view(bytes).substr(length, length);
      Pieces::forEverySplit(length, [&](const Pieces::Ends& ends) {
        ASSERT_EQ(Pieces::encoded(coder, start, ends), coder.encode(start)) << coder.name << " " << length;
      });
    }
    for (int i = 0; i < 40; ++i) {
      const auto start = std::string_view(bytes).substr(0, random() % bytes.size());
      const auto ends = Pieces::randomEnds(random, start.size());
      ASSERT_TRUE(Pieces::encoded(coder, start, ends) == coder.encode(start))
          << coder.name << " " << start.size();
    }
  }
}

TEST_P(VXEncoderTests, AppendTextThatIsASecretIfTheBytesAre) {
  for (const bool secret : {true, false}) {
    const auto text = NSMutableData::dataWithBytes("<", 1), rest = NSMutableData::data();
    VXEncoder encoder(VXNotation::base64);
    encoder.update(*NSData::dataWithBytes(std::as_bytes(std::span("foob", 4)), secret), *text);
    encoder.finish(*rest);
    EXPECT_EQ(bytesOf(text), "<Zm9v");
    EXPECT_EQ(bytesOf(rest), "Yg==");
    EXPECT_EQ(text->holdsSecret() && rest->holdsSecret(), secret);
    EXPECT_EQ(text->holdsSecret() || rest->holdsSecret(), secret);
  }
}

INSTANTIATE_FOR_EVERY_SET(VXEncoderTests);

TEST(VXEncoderTests, RaiseForMisuse) {
  std::array<std::byte, 8> room{};
  const auto data = NSMutableData::dataWithBytes("foo", 3);
  VXEncoder encoder(VXNotation::base64);
  EXPECT_EQ(raised([&] { encoder.update(data->bytes(), std::span(room).first(7)); }), "NSRangeException");
  EXPECT_EQ(raised([&] { encoder.update(*data, *data); }), "NSInvalidArgumentException");
  EXPECT_EQ(encoder.finish(room), 0u) << "what was refused has changed nothing";
  EXPECT_EQ(raised([&] { encoder.update(data->bytes(), room); }), "NSInternalInconsistencyException");
  EXPECT_EQ(raised([&] { encoder.finish(room); }), "NSInternalInconsistencyException");
  EXPECT_EQ(encoder.maximumLength(SIZE_MAX / 2), SIZE_MAX / 2 / 3 * 4 + 4);
  EXPECT_EQ(encoder.maximumLength(SIZE_MAX), SIZE_MAX);
}

TEST(VXEncoderTests, LeaveNothingOfTheBytesBehind) {
  alignas(VXEncoder) std::array<char, sizeof(VXEncoder)> memory{};
  std::array<std::byte, 8> room{};
  VXEncoder* const encoder = new (memory.data()) VXEncoder(VXNotation::base32);
  encoder->update(std::as_bytes(std::span("SeCr", 4)), room);
  const auto holdsSecret = [&] {
    return std::string_view(memory.data(), memory.size()).find("SeCr") < memory.size();
  };
  EXPECT_TRUE(holdsSecret());
  encoder->~VXEncoder();
  EXPECT_FALSE(holdsSecret());
}

}  // namespace
