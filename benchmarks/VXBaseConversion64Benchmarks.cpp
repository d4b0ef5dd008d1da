#include <VXFoundation/NSData+VXBaseConversion.h>
#include <cryptopp/base64.h>
#include <cryptopp/filters.h>
#include <glib.h>
#include <nettle/base64.h>
#include <openssl/evp.h>

#include <QByteArray>
#include <cstring>
#include <memory>

#include "Contest.h"

namespace {

using namespace Contest;

/// Encoded text of `size` characters.
std::string textOf(std::size_t size) {
  return std::string(*VXBaseConversion::base64String(*dataOf(randomBytes(size / 4 * 3))));
}

void registerEncoders(const std::string& operation) {
  ours(operation, [](std::size_t size) {
    return Trial{size, [data = dataOf(randomBytes(size))] { return VXBaseConversion::base64String(*data); }};
  });
  contestant(operation, "OpenSSL", Checks::all, randomBytes, [](const Bytes& bytes) {
    Buffer text = buffer(bytes.size() / 3 * 4 + 5);
    EVP_EncodeBlock(text.get(), raw(bytes), static_cast<int>(bytes.size()));
    return text;
  });
  contestant(operation, "GLib", Checks::all, randomBytes, [](const Bytes& bytes) {
    return std::unique_ptr<char, void (*)(void*)>(g_base64_encode(raw(bytes), bytes.size()), g_free);
  });
  contestant(operation, "Crypto++", Checks::all, randomBytes, [](const Bytes& bytes) {
    std::string text;
    CryptoPP::StringSource(raw(bytes), bytes.size(), true,
                           new CryptoPP::Base64Encoder(new CryptoPP::StringSink(text), false));
    return text;
  });
  contestant(operation, "Qt 5", Checks::all, randomBytes,
             [](const Bytes& bytes) { return viewForQt(bytes).toBase64(); });
  contestant(operation, "nettle", Checks::all, randomBytes, [](const Bytes& bytes) {
    Buffer text = buffer(BASE64_ENCODE_RAW_LENGTH(bytes.size()));
    base64_encode_raw(reinterpret_cast<char*>(text.get()), bytes.size(), raw(bytes));
    return text;
  });
}

void registerDecoders(const std::string& operation) {
  ours(operation, [](std::size_t size) {
    return Trial{size, [text = NSString::stringWithUTF8String(textOf(size))] {
                   return VXBaseConversion::dataWithBase64String(text);
                 }};
  });
  contestant(operation, "OpenSSL", Checks::fewer, textOf, [](const std::string& text) {
    Buffer bytes = buffer(text.size() / 4 * 3);
    EVP_DecodeBlock(bytes.get(), reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<int>(text.size()));
    return bytes;
  });
  contestant(operation, "GLib", Checks::fewer, textOf, [](const std::string& text) {
    gsize count = 0;
    return std::unique_ptr<guchar, void (*)(void*)>(g_base64_decode(text.c_str(), &count), g_free);
  });
  contestant(operation, "Crypto++", Checks::fewer, textOf, [](const std::string& text) {
    std::string bytes;
    CryptoPP::StringSource(text, true, new CryptoPP::Base64Decoder(new CryptoPP::StringSink(bytes)));
    return bytes;
  });
  contestant(operation, "Qt 5", Checks::all, [](std::size_t size) {
    return Trial{size, [text = QByteArray::fromStdString(textOf(size))] {
                   return QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
                 }};
  });
  contestant(operation, "nettle", Checks::fewer, textOf, [](const std::string& text) {
    base64_decode_ctx context;
    base64_decode_init(&context);
    std::size_t count = BASE64_DECODE_LENGTH(text.size());
    Buffer bytes = buffer(count);
    base64_decode_update(&context, &count, bytes.get(), text.size(), text.data());
    return bytes;
  });
}

}  // namespace

void registerBase64() {
  contestant("memcpy", "memcpy", Checks::all, [](std::size_t size) {
    return Trial{size, [bytes = randomBytes(size), copy = std::make_shared<Bytes>(size)] {
                   std::memcpy(copy->data(), bytes.data(), bytes.size());
                   benchmark::ClobberMemory();
                   return copy->data();
                 }};
  });
  registerEncoders("base-64 encode");
  registerDecoders("base-64 decode");
}
