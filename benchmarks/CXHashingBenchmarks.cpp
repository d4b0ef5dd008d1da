#define CRYPTOPP_ENABLE_NAMESPACE_WEAK 1
#include <VXFoundation/NSData+CXHashing.h>
#include <cryptopp/hmac.h>
#include <cryptopp/md5.h>
#include <cryptopp/sha.h>
#include <glib.h>
#include <nettle/hmac.h>
#include <nettle/md5.h>
#include <nettle/sha1.h>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include <QCryptographicHash>
#include <array>
#include <memory>

#include "Contest.h"

namespace {

using namespace Contest;
using Digest = std::array<unsigned char, 20>;

constexpr unsigned char key[] = "a key of some length";

/// OpenSSL used at its fastest: the algorithm is fetched once and the context reused.
void registerOpenSSL(const std::string& operation, const char* algorithm) {
  contestant(operation, "OpenSSL", Checks::all, [algorithm](std::size_t size) {
    static EVP_MD_CTX* const context = EVP_MD_CTX_new();
    return Trial{size, [digest = EVP_MD_fetch(nullptr, algorithm, nullptr), bytes = randomBytes(size)] {
                   Digest result;
                   EVP_DigestInit_ex2(context, digest, nullptr);
                   EVP_DigestUpdate(context, bytes.data(), bytes.size());
                   EVP_DigestFinal_ex(context, result.data(), nullptr);
                   return result;
                 }};
  });
}

void registerOpenSSLHMAC(const std::string& operation) {
  contestant(operation, "OpenSSL", Checks::all, [](std::size_t size) {
    static EVP_MAC_CTX* const context = EVP_MAC_CTX_new(EVP_MAC_fetch(nullptr, "HMAC", nullptr));
    static char name[] = "SHA1";
    static const OSSL_PARAM parameters[] = {OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, name, 0),
                                            OSSL_PARAM_construct_end()};
    EVP_MAC_CTX_set_params(context, parameters);
    return Trial{size, [bytes = randomBytes(size)] {
                   Digest result;
                   std::size_t length = 0;
                   EVP_MAC_init(context, key, sizeof key, nullptr);
                   EVP_MAC_update(context, raw(bytes), bytes.size());
                   EVP_MAC_final(context, result.data(), &length, result.size());
                   return result;
                 }};
  });
}

template <class Hash>
void registerCryptoPP(const std::string& operation, Hash hash) {
  contestant(operation, "Crypto++", Checks::all, [hash](std::size_t size) {
    return Trial{size, [hash, bytes = randomBytes(size)]() mutable {
                   Digest result;
                   hash.CalculateDigest(result.data(), raw(bytes), bytes.size());
                   return result;
                 }};
  });
}

template <class Context, class Start, class Update, class Finish>
void registerNettle(const std::string& operation, Start start, Update update, Finish finish) {
  contestant(operation, "nettle", Checks::all, randomBytes, [=](const Bytes& bytes) {
    Context context;
    Digest result;
    start(&context);
    update(&context, bytes.size(), raw(bytes));
    finish(&context, std::min(result.size(), std::size_t{16}), result.data());
    return result;
  });
}

void registerGLib(const std::string& operation, GChecksumType type) {
  contestant(operation, "GLib", Checks::all, randomBytes, [type](const Bytes& bytes) {
    Digest result;
    gsize length = result.size();
    const std::unique_ptr<GChecksum, void (*)(GChecksum*)> sum(g_checksum_new(type), g_checksum_free);
    g_checksum_update(sum.get(), raw(bytes), static_cast<gssize>(bytes.size()));
    g_checksum_get_digest(sum.get(), result.data(), &length);
    return result;
  });
}

void registerQt(const std::string& operation, QCryptographicHash::Algorithm algorithm) {
  contestant(operation, "Qt 5", Checks::all, randomBytes, [algorithm](const Bytes& bytes) {
    return QCryptographicHash::hash(viewForQt(bytes), algorithm);
  });
}

template <class Operation>
void registerOurs(const std::string& name, Operation operation) {
  contestant(name, "VXFoundation", Checks::all, [operation](std::size_t size) {
    return Trial{size, [operation, data = dataOf(randomBytes(size))] { return operation(*data); }};
  });
}

}  // namespace

void registerDigests() {
  registerOurs("MD5", CXHashing::MD5Hash);
  registerOpenSSL("MD5", "MD5");
  registerCryptoPP("MD5", CryptoPP::Weak::MD5());
  registerNettle<md5_ctx>("MD5", md5_init, md5_update, md5_digest);
  registerGLib("MD5", G_CHECKSUM_MD5);
  registerQt("MD5", QCryptographicHash::Md5);

  registerOurs("SHA-1", CXHashing::SHA1Hash);
  registerOpenSSL("SHA-1", "SHA1");
  registerCryptoPP("SHA-1", CryptoPP::SHA1());
  registerNettle<sha1_ctx>("SHA-1", sha1_init, sha1_update, sha1_digest);
  registerGLib("SHA-1", G_CHECKSUM_SHA1);
  registerQt("SHA-1", QCryptographicHash::Sha1);

  registerOurs("HMAC-SHA1", [](const NSData& data) {
    static const NSRefPtr<NSData> secretKey = NSData::dataWithBytes(key, sizeof key);
    return CXHashing::HMAC_SHA1_WithSecretKey(data, secretKey);
  });
  registerOpenSSLHMAC("HMAC-SHA1");
  registerCryptoPP("HMAC-SHA1", CryptoPP::HMAC<CryptoPP::SHA1>(key, sizeof key));
  registerNettle<hmac_sha1_ctx>(
      "HMAC-SHA1", [](hmac_sha1_ctx* context) { hmac_sha1_set_key(context, sizeof key, key); },
      hmac_sha1_update, hmac_sha1_digest);
}
