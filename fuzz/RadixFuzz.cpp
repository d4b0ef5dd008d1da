#include <VXFoundation/VXCodecKernels.h>

#include "VXFoundation/kernels/CodecDispatch.h"
#include "tests/support/Fuzz.h"
#include "tests/support/Pieces.h"

// Base 64, 32, 16 and base 64 for URLs: every set of kernels does what the scalar one does, a string is
// decoded or rejected by the rules, decoded data is encoded in the normal form, and pieces give the same as
// the whole. The first byte of an input selects the notation and the kernels, the others are bytes or digits.
namespace {

/// Returns mostly digits of the notation, so that a fuzzer need not find them one by one.
std::string digitsFrom(const Notation& notation, std::string_view bytes) {
  std::string digits;
  for (const char c : bytes)
    digits += c == '\xFF' ? '*' : notation.alphabet[static_cast<unsigned char>(c) % notation.alphabet.size()];
  while (!notation.fillsBytes(digits.size())) digits.pop_back();
  return digits;
}

void compareKernels(const Notation& notation, std::string_view input) {
  const auto bytes = fuzzBytes(input);
  const std::string digits = digitsFrom(notation, input);
  const auto sets = VXKernels::availableKernels();
  const auto encoded = notation.encoded(*sets[0], bytes);
  const auto decoded = notation.decoded(*sets[0], digits);
  for (const auto* set : sets.subspan(1)) {
    fuzzRequire(notation.encoded(*set, bytes) == encoded, "all kernels encode alike");
    fuzzRequire(notation.decoded(*set, digits) == decoded, "all kernels decode alike");
    if (!notation.fillsBytes(input.size())) continue;
    fuzzRequire(notation.decoded(*set, input) == notation.decoded(*sets[0], input),
                "all kernels reject alike");
  }
}

void decodeAndEncode(const Notation& notation, const std::string& text) {
  const NSRefPtr<NSData> data =
      notation.decode(NSString::stringWithCharacters(std::u16string(text.begin(), text.end())));
  const Bytes expected = notation.decodedByRule(text);
  fuzzRequire(bytesOf(data) == expected, "a string is decoded or rejected by the rules");
  if (!data) return;
  fuzzRequire(bytesOf(notation.encode(*data)) == notation.encodedByRule(*expected),
              "decoded data is encoded in the normal form");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const unsigned use = input.byte();
  const std::size_t index = use % std::size(notations);
  const Notation& notation = notations[index];
  const auto sets = VXCodecKernelsAvailable();
  VXCodecKernelsUse(sets[use / std::size(notations) % sets.size()]);
  compareKernels(notation, input.rest());
  for (const std::string& text :
       {std::string(input.rest()), notation.padded(digitsFrom(notation, input.rest()))}) {
    decodeAndEncode(notation, text);
    Pieces::compare(Pieces::coders[index], text, use);
  }
  return 0;
}
