#include <VXFoundation/VXFoundation.h>

#include <optional>

#include "VXFoundation/kernels/CodecDispatch.h"
#include "tests/support/Fuzz.h"

// Percent coding: every set of kernels does what the scalar one does, in buffers of exactly the room that
// they ask for, and each direction undoes the other. The first byte of an input names the set in use.
namespace {

using Bytes = std::vector<std::byte>;

std::optional<Bytes> converted(VXKernels::PercentDecode* kernel, const Bytes& input, std::size_t room) {
  Bytes output(room);
  const std::size_t length = kernel(input.data(), input.size(), output.data());
  if (length == VXKernels::malformed) return std::nullopt;
  output.resize(length);
  return output;
}

std::optional<Bytes> encoded(const VXKernels::CodecKernels& kernels, const Bytes& bytes) {
  return converted(kernels.percentEncode, bytes, 3 * bytes.size());
}

std::optional<Bytes> decoded(const VXKernels::CodecKernels& kernels, const Bytes& text) {
  return converted(kernels.percentDecode, text, text.size());
}

void compareKernels(const Bytes& input) {
  const auto sets = VXKernels::availableKernels();
  const Bytes text = *encoded(*sets[0], input);
  fuzzRequire(decoded(*sets[0], text) == input, "what is encoded decodes to itself");
  for (const auto* set : sets.subspan(1)) {
    fuzzRequire(encoded(*set, input) == text, "all kernels encode alike");
    fuzzRequire(decoded(*set, text) == input, "all kernels decode alike");
    fuzzRequire(decoded(*set, input) == decoded(*sets[0], input), "all kernels refuse alike");
  }
}

void decodeText(std::string_view input) {
  const NSRefPtr<NSString> text = NSString::stringWithUTF8String(input);
  if (!text) return;
  const NSRefPtr<NSString> encodedText = VXURLEncodeString(text);
  fuzzRequire(text->isEqual(VXURLDecodeString(encodedText)), "an encoded text decodes to itself");
  const NSRefPtr<NSString> decodedText = VXURLDecodeString(text);
  if (!decodedText || decodedText->length() == 0) return;
  fuzzRequire(text->isASCII(), "no decoded text comes from other than ASCII");
  fuzzRequire(decodedText->isEqual(VXURLDecodeString(VXURLEncodeString(decodedText))),
              "a decoded text can be encoded and decoded again");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const auto sets = VXCodecKernelsAvailable();
  VXCodecKernelsUse(sets[input.byte() % sets.size()]);
  compareKernels(fuzzBytes(input.rest()));
  decodeText(input.rest());
  return 0;
}
