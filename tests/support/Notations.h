#pragma once

#include <bitset>
#include <vector>

#include <VXFoundation/NSData+VXBaseConversion.h>
#include <VXFoundation/VXDecoder.h>
#include <VXFoundation/VXEncoder.h>

#include "VXFoundation/kernels/CodecKernels.h"
#include "tests/support/Bytes.h"

/// Returns the digits of the bytes by way of strings of binary digits: the most significant bit first, the
/// last digit padded with zeros.
inline std::string digitsByRule(std::string_view bytes, std::string_view alphabet, std::size_t width) {
  std::string bits, digits;
  for (const char byte : bytes) bits += std::bitset<8>(static_cast<unsigned char>(byte)).to_string();
  while (bits.size() % width != 0) bits.push_back('0');
  for (std::size_t i = 0; i < bits.size(); i += width)
    digits.push_back(alphabet[std::bitset<8>(bits, i, width).to_ulong()]);
  return digits;
}

/// Returns the whole bytes that the digits fill; no value if one of them is not in the alphabet.
inline Bytes bytesByRule(std::string_view digits, std::string_view alphabet, std::size_t width) {
  std::string bits, bytes;
  for (const char digit : digits) {
    const std::size_t value = alphabet.find(digit);
    if (value == std::string_view::npos) return {};
    bits += std::bitset<8>(value).to_string().substr(8 - width);
  }
  for (std::size_t i = 0; i + 8 <= bits.size(); i += 8)
    bytes.push_back(static_cast<char>(std::bitset<8>(bits, i, 8).to_ulong()));
  return bytes;
}

/// A notation of RFC 4648: its rules, and the kernels and operations that must follow them.
struct Notation {
  using Kernels = VXKernels::CodecKernels;

  std::string name, alphabet;
  std::size_t bits, group;  // bits per digit, digits per group
  VXKernels::RadixKernels Kernels::*kernel;
  NSRef<NSString> (*encode)(const NSData&);
  NSRefPtr<NSData> (*decode)(NSStringArg);
  bool needsPadding = true;

  std::size_t digits(std::size_t bytes) const { return (bytes * 8 + bits - 1) / bits; }
  bool fillsBytes(std::size_t digits) const { return digits * bits % 8 < bits; }
  std::string padded(std::string digits) const {
    digits.resize((digits.size() + group - 1) / group * group, '=');
    return digits;
  }

  std::string encodedByRule(std::string_view bytes) const {
    return padded(digitsByRule(bytes, alphabet, bits));
  }
  Bytes bytesOfDigits(std::string digits) const {
    for (char& c : digits)
      if (bits == 4 && c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');
    return bytesByRule(digits, alphabet, bits);
  }
  Bytes decodedByRule(const std::string& text) const {
    const std::size_t digits = text.find_last_not_of('=') + 1, padding = text.size() - digits;
    if (padding > 0 || needsPadding)
      if (text.size() % group != 0 || padding >= group) return {};
    if (!fillsBytes(digits)) return {};
    return bytesOfDigits(text.substr(0, digits));
  }

  std::string encoded(const Kernels& kernels, std::span<const std::byte> bytes) const {
    std::string text = padded(std::string(digits(bytes.size()), '?'));
    (kernels.*kernel).encode(bytes.data(), bytes.size(), text.data());
    return text;
  }
  std::optional<std::vector<std::byte>> decoded(const Kernels& kernels, std::string_view digits) const {
    std::vector<std::byte> bytes(digits.size() * bits / 8);
    if (!(kernels.*kernel).decode(digits.data(), digits.size(), bytes.data())) return std::nullopt;
    return bytes;
  }
};

/// Base 64 for URLs has no operations on whole data: one piece is the whole.
///@{
inline NSRef<NSString> base64URLString(const NSData& data) {
  VXEncoder encoder(VXNotation::base64URL);
  const auto text = NSMutableData::data();
  encoder.update(data, *text);
  encoder.finish(*text);
  return NSString::stringWithData(text, NSASCIIStringEncoding);
}
inline NSRefPtr<NSData> dataWithBase64URLString(NSStringArg text) {
  const auto string = text.borrow();
  const auto units = string ? string->dataUsingEncoding(NSASCIIStringEncoding) : nullptr;
  VXDecoder decoder(VXNotation::base64URL);
  const auto data = NSMutableData::data();
  if (!units || !decoder.update(*units, *data) || !decoder.finish(*data)) return nullptr;
  return data;
}
///@}

inline const Notation notations[] = {
    {"base64", "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/", 6, 4,
     &Notation::Kernels::base64, VXBaseConversion::base64String, VXBaseConversion::dataWithBase64String},
    {"base32", "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567", 5, 8, &Notation::Kernels::base32,
     VXBaseConversion::base32String, VXBaseConversion::dataWithBase32String},
    {"base16", "0123456789ABCDEF", 4, 2, &Notation::Kernels::base16, VXBaseConversion::base16String,
     VXBaseConversion::dataWithBase16String},
    {"base64url", "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_", 6, 4,
     &Notation::Kernels::base64URL, base64URLString, dataWithBase64URLString, false},
};
