#include <VXFoundation/VXCodecKernels.h>
#include <VXFoundation/VXURLCoding.h>

#include <optional>

#include "VXFoundation/kernels/CodecDispatch.h"
#include "tests/support/Pieces.h"

// Percent coding: every set of kernels does what the scalar one does, in buffers of exactly the required
// size, each direction reverses the other, and pieces give the same as the whole. The first byte of an input
// selects the set in use.
namespace {

using ByteVector = std::vector<std::byte>;

std::optional<ByteVector> converted(VXKernels::PercentDecode* kernel, const ByteVector& input,
                                    std::size_t room) {
  ByteVector output(room);
  const std::size_t length = kernel(input.data(), input.size(), output.data());
  if (length == VXKernels::malformed) return std::nullopt;
  output.resize(length);
  return output;
}

std::optional<ByteVector> encoded(const VXKernels::CodecKernels& kernels, const ByteVector& bytes) {
  return converted(kernels.percentEncode, bytes, 3 * bytes.size());
}

std::optional<ByteVector> decoded(const VXKernels::CodecKernels& kernels, const ByteVector& text) {
  return converted(kernels.percentDecode, text, text.size());
}

void compareKernels(const ByteVector& input) {
  const auto sets = VXKernels::availableKernels();
  const ByteVector text = *encoded(*sets[0], input);
  fuzzRequire(decoded(*sets[0], text) == input, "encoded bytes decode to themselves");
  for (const auto* set : sets.subspan(1)) {
    fuzzRequire(encoded(*set, input) == text, "all kernels encode alike");
    fuzzRequire(decoded(*set, text) == input, "all kernels decode alike");
    fuzzRequire(decoded(*set, input) == decoded(*sets[0], input), "all kernels reject alike");
  }
}

void decodeString(std::string_view input) {
  const NSRefPtr<NSString> text = NSString::stringWithUTF8String(input);
  if (!text) return;
  const NSRefPtr<NSString> encodedText = VXURLEncodeString(text);
  fuzzRequire(text->isEqual(VXURLDecodeString(encodedText)), "an encoded string decodes to itself");
  const NSRefPtr<NSString> decodedText = VXURLDecodeString(text);
  if (!decodedText || decodedText->length() == 0) return;
  fuzzRequire(text->isASCII(), "only ASCII is decoded");
  fuzzRequire(decodedText->isEqual(VXURLDecodeString(VXURLEncodeString(decodedText))),
              "a decoded string can be encoded and decoded again");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const auto sets = VXCodecKernelsAvailable();
  const unsigned use = input.byte();
  VXCodecKernelsUse(sets[use % sets.size()]);
  compareKernels(fuzzBytes(input.rest()));
  decodeString(input.rest());
  Pieces::compare(Pieces::coders[4], std::string(input.rest()), use);
  return 0;
}
