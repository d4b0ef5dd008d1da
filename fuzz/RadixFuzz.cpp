#include <VXFoundation/VXFoundation.h>

#include <cctype>
#include <optional>

#include "VXFoundation/kernels/CodecDispatch.h"
#include "fuzz/Fuzz.h"

// Base 64, 32 and 16: every set of kernels does what the scalar one does, and what decodes is encoded to
// its normal form. The first byte of an input says how to use it, the others are bytes or digits.
namespace {

using VXKernels::CodecKernels;
using Bytes = std::vector<std::byte>;

struct Base {
  std::string_view alphabet;
  std::size_t bits, group;
  VXKernels::Encode* CodecKernels::*encode;
  VXKernels::Decode* CodecKernels::*decode;
  Ref<NSString> (*text)(const NSData&);
  RefPtr<NSData> (*data)(Text);
};

const Base bases[] = {
    {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/", 6, 4, &CodecKernels::base64Encode,
     &CodecKernels::base64Decode, VXBaseConversion::base64String, VXBaseConversion::dataWithBase64String},
    {"ABCDEFGHIJKLMNOPQRSTUVWXYZ234567", 5, 8, &CodecKernels::base32Encode, &CodecKernels::base32Decode,
     VXBaseConversion::base32String, VXBaseConversion::dataWithBase32String},
    {"0123456789abcdef", 4, 2, &CodecKernels::base16Encode, &CodecKernels::base16Decode,
     VXBaseConversion::base16String, VXBaseConversion::dataWithBase16String},
};

std::string encoded(const Base& base, const CodecKernels& kernels, const Bytes& bytes) {
  const std::size_t digits = (bytes.size() * 8 + base.bits - 1) / base.bits;
  std::string text((digits + base.group - 1) / base.group * base.group, '\0');
  (kernels.*base.encode)(bytes.data(), bytes.size(), text.data());
  return text;
}

std::optional<Bytes> decoded(const Base& base, const CodecKernels& kernels, std::string_view digits) {
  Bytes bytes(digits.size() * base.bits / 8);
  if (!(kernels.*base.decode)(digits.data(), digits.size(), bytes.data())) return std::nullopt;
  return bytes;
}

bool fillsBytes(const Base& base, std::size_t digits) { return digits * base.bits % 8 < base.bits; }

/// Mostly digits of the base, so that a fuzzer need not find them one by one.
std::string digitsFrom(const Base& base, std::string_view bytes) {
  std::string digits;
  for (const char c : bytes)
    digits += c == '\xFF' ? '*' : base.alphabet[static_cast<unsigned char>(c) % base.alphabet.size()];
  while (!fillsBytes(base, digits.size())) digits.pop_back();
  return digits;
}

std::string padded(const Base& base, std::string digits) {
  digits.resize((digits.size() + base.group - 1) / base.group * base.group, '=');
  return digits;
}

void compareKernels(const Base& base, std::string_view input) {
  const Bytes bytes = fuzzBytes(input);
  const std::string digits = digitsFrom(base, input);
  const auto sets = VXKernels::availableKernels();
  for (const CodecKernels* set : sets.subspan(1)) {
    fuzzRequire(encoded(base, *set, bytes) == encoded(base, *sets[0], bytes), "all kernels encode alike");
    fuzzRequire(decoded(base, *set, digits) == decoded(base, *sets[0], digits), "all kernels decode alike");
    if (!fillsBytes(base, input.size())) continue;
    fuzzRequire(decoded(base, *set, input) == decoded(base, *sets[0], input), "all kernels refuse alike");
  }
}

/// Base 16 takes either case; else only the last digit may differ, in bits that fill no byte.
bool isNormalFormOf(const Base& base, std::string_view normal, std::string_view text) {
  if (normal.size() != text.size()) return false;
  const std::size_t last = normal.find_last_not_of('=');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool other =
        base.bits == 4 ? normal[i] != std::toupper(text[i]) : normal[i] != text[i] && i != last;
    if (other) return false;
  }
  return true;
}

void decodeAndEncode(const Base& base, const std::string& text) {
  std::u16string units;
  for (const char c : text) units += static_cast<unsigned char>(c);
  const RefPtr<NSData> data = base.data(NSString::stringWithCharacters(units));
  if (!data) return;
  const std::string normal(*base.text(*data));
  fuzzRequire(isNormalFormOf(base, normal, text), "what decodes is encoded to its normal form");
  fuzzRequire(data->isEqual(base.data(NSString::stringWithUTF8String(normal))),
              "the normal form decodes alike");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const unsigned use = input.byte();
  const Base& base = bases[use % std::size(bases)];
  const auto sets = VXCodecKernelsAvailable();
  VXCodecKernelsUse(sets[use / std::size(bases) % sets.size()]);
  compareKernels(base, input.rest());
  decodeAndEncode(base, std::string(input.rest()));
  decodeAndEncode(base, padded(base, digitsFrom(base, input.rest())));
  return 0;
}
