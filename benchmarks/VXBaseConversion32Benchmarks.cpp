#include <VXFoundation/NSData+VXBaseConversion.h>
#include <cryptopp/base32.h>
#include <cryptopp/filters.h>
#include <liboath/oath.h>

#include <cstdlib>
#include <memory>

#include "Contest.h"

namespace {

using namespace Contest;
using Allocated = std::unique_ptr<char, void (*)(void*)>;

const auto* const alphabet = reinterpret_cast<const CryptoPP::byte*>("ABCDEFGHIJKLMNOPQRSTUVWXYZ234567");

std::string textOf(std::size_t size) {
  return std::string(*VXBaseConversion::base32String(*dataOf(randomBytes(size / 8 * 5))));
}

void registerEncoders(const std::string& operation) {
  ours(operation, [](std::size_t size) {
    return Trial{size, [data = dataOf(randomBytes(size))] { return VXBaseConversion::base32String(*data); }};
  });
  contestant(operation, "liboath", Checks::all, randomBytes, [](const Bytes& bytes) {
    char* text = nullptr;
    oath_base32_encode(characters(bytes), bytes.size(), &text, nullptr);
    return Allocated(text, std::free);
  });
  contestant(operation, "Crypto++", Checks::all, randomBytes, [](const Bytes& bytes) {
    std::string text;
    auto* encoder = new CryptoPP::Base32Encoder(new CryptoPP::StringSink(text));
    encoder->IsolatedInitialize(CryptoPP::MakeParameters(CryptoPP::Name::EncodingLookupArray(), alphabet));
    CryptoPP::StringSource(reinterpret_cast<const CryptoPP::byte*>(bytes.data()), bytes.size(), true,
                           encoder);
    return text;
  });
}

void registerDecoders(const std::string& operation) {
  ours(operation, [](std::size_t size) {
    return Trial{size, [text = NSString::stringWithUTF8String(textOf(size))] {
                   return VXBaseConversion::dataWithBase32String(text);
                 }};
  });
  contestant(operation, "liboath", Checks::fewer, textOf, [](const std::string& text) {
    char* bytes = nullptr;
    oath_base32_decode(text.data(), text.size(), &bytes, nullptr);
    return Allocated(bytes, std::free);
  });
  contestant(operation, "Crypto++", Checks::fewer, [](std::size_t size) {
    static const auto values = [] {
      std::vector<int> table(256);
      CryptoPP::BaseN_Decoder::InitializeDecodingLookupArray(table.data(), alphabet, 32, true);
      return table;
    }();
    return Trial{size, [text = textOf(size)] {
                   std::string bytes;
                   auto* decoder = new CryptoPP::Base32Decoder(new CryptoPP::StringSink(bytes));
                   decoder->IsolatedInitialize(
                       CryptoPP::MakeParameters(CryptoPP::Name::DecodingLookupArray(), values.data()));
                   CryptoPP::StringSource(text, true, decoder);
                   return bytes;
                 }};
  });
}

}  // namespace

void registerBase32() {
  registerEncoders("base-32 encode");
  registerDecoders("base-32 decode");
}
