#include <VXFoundation/NSData+VXBaseConversion.h>
#include <cryptopp/filters.h>
#include <cryptopp/hex.h>
#include <nettle/base16.h>
#include <openssl/crypto.h>

#include <QByteArray>
#include <memory>

#include "Contest.h"

namespace {

using namespace Contest;

std::string textOf(std::size_t size) {
  return std::string(*VXBaseConversion::base16String(*dataOf(randomBytes(size / 2))));
}

void registerEncoders(const std::string& operation) {
  ours(operation, [](std::size_t size) {
    return Trial{size, [data = dataOf(randomBytes(size))] { return VXBaseConversion::base16String(*data); }};
  });
  contestant(operation, "OpenSSL", Checks::all, randomBytes, [](const Bytes& bytes) {
    Buffer text = buffer(bytes.size() * 2 + 1);
    OPENSSL_buf2hexstr_ex(reinterpret_cast<char*>(text.get()), bytes.size() * 2 + 1, nullptr, raw(bytes),
                          bytes.size(), '\0');
    return text;
  });
  contestant(operation, "Crypto++", Checks::all, randomBytes, [](const Bytes& bytes) {
    std::string text;
    CryptoPP::StringSource(raw(bytes), bytes.size(), true,
                           new CryptoPP::HexEncoder(new CryptoPP::StringSink(text)));
    return text;
  });
  contestant(operation, "Qt 5", Checks::all, randomBytes,
             [](const Bytes& bytes) { return viewForQt(bytes).toHex(); });
  contestant(operation, "nettle", Checks::all, randomBytes, [](const Bytes& bytes) {
    Buffer text = buffer(BASE16_ENCODE_LENGTH(bytes.size()));
    base16_encode_update(reinterpret_cast<char*>(text.get()), bytes.size(), raw(bytes));
    return text;
  });
}

void registerDecoders(const std::string& operation) {
  ours(operation, [](std::size_t size) {
    return Trial{size, [text = NSString::stringWithUTF8String(textOf(size))] {
                   return VXBaseConversion::dataWithBase16String(text);
                 }};
  });
  contestant(operation, "OpenSSL", Checks::all, textOf, [](const std::string& text) {
    Buffer bytes = buffer(text.size() / 2);
    OPENSSL_hexstr2buf_ex(bytes.get(), text.size() / 2, nullptr, text.c_str(), '\0');
    return bytes;
  });
  contestant(operation, "Crypto++", Checks::fewer, textOf, [](const std::string& text) {
    std::string bytes;
    CryptoPP::StringSource(text, true, new CryptoPP::HexDecoder(new CryptoPP::StringSink(bytes)));
    return bytes;
  });
  contestant(operation, "Qt 5", Checks::fewer, [](std::size_t size) {
    return Trial{size,
                 [text = QByteArray::fromStdString(textOf(size))] { return QByteArray::fromHex(text); }};
  });
  contestant(operation, "nettle", Checks::fewer, textOf, [](const std::string& text) {
    base16_decode_ctx context;
    base16_decode_init(&context);
    std::size_t count = BASE16_DECODE_LENGTH(text.size());
    Buffer bytes = buffer(count);
    base16_decode_update(&context, &count, bytes.get(), text.size(), text.data());
    return bytes;
  });
}

}  // namespace

void registerBase16() {
  registerEncoders("base-16 encode");
  registerDecoders("base-16 decode");
}
