#include <Security/FileStore/SecFileCrypto.h>

#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>
#include <openssl/params.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>

namespace {

struct Free {
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
  void operator()(EVP_KDF* kdf) const { EVP_KDF_free(kdf); }
  void operator()(EVP_KDF_CTX* context) const { EVP_KDF_CTX_free(context); }
  void operator()(EVP_MAC* mac) const { EVP_MAC_free(mac); }
  void operator()(EVP_MAC_CTX* context) const { EVP_MAC_CTX_free(context); }
};

template <class Handle>
using Owned = std::unique_ptr<Handle, Free>;

template <class Handle>
Handle* there(Handle* handle) {
  secRequire(handle != nullptr, errSecAllocate);
  return handle;
}

template <class Handle>
Owned<Handle> own(Handle* handle) {
  return Owned<Handle>(there(handle));
}

const unsigned char* in(SecView bytes) { return reinterpret_cast<const unsigned char*>(bytes.data()); }
unsigned char* out(std::span<std::byte> bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }
int length(SecView bytes) { return static_cast<int>(bytes.size()); }
void done(int result) { secRequire(result == 1, errSecAllocate); }

OSSL_PARAM digestName() {
  static char name[] = "SHA256";
  return OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, name, 0);
}

OSSL_PARAM octets(const char* name, SecView bytes) {
  return OSSL_PARAM_construct_octet_string(name, const_cast<std::byte*>(bytes.data()), bytes.size());
}

// Looking an algorithm up by its name takes longer than most of what is done with it here. What was found is
// kept to the end of the process, and never let go of: a host's own exit handlers may still want it.

const EVP_CIPHER* cipher() {
  static const EVP_CIPHER* const found = there(EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr));
  return found;
}

const EVP_MD* hash() {
  static const EVP_MD* const found = there(EVP_MD_fetch(nullptr, "SHA256", nullptr));
  return found;
}

EVP_KDF* hkdf() {
  static EVP_KDF* const found = there(EVP_KDF_fetch(nullptr, "HKDF", nullptr));
  return found;
}

Owned<EVP_MAC_CTX> makeHMAC() {
  const auto mac = own(EVP_MAC_fetch(nullptr, "HMAC", nullptr));
  auto context = own(EVP_MAC_CTX_new(mac.get()));
  const std::array<unsigned char, secKeySize> noKey{};
  const OSSL_PARAM parameters[] = {digestName(), OSSL_PARAM_construct_end()};
  done(EVP_MAC_init(context.get(), noKey.data(), noKey.size(), parameters));
  return context;
}

/// A computation under a key of its own.
Owned<EVP_MAC_CTX> hmac(SecView key) {
  static const EVP_MAC_CTX* const made = makeHMAC().release();
  auto context = own(EVP_MAC_CTX_dup(made));
  done(EVP_MAC_init(context.get(), in(key), key.size(), nullptr));
  return context;
}

SecSecret derive(EVP_KDF* kdf, const OSSL_PARAM* parameters) {
  const auto context = own(EVP_KDF_CTX_new(kdf));
  SecSecret key(secKeySize);
  done(EVP_KDF_derive(context.get(), out(key.writableBytes()), secKeySize, parameters));
  return key;
}

SecView nonceOf(SecView box) { return box.first(secNonceSize); }
SecView tagOf(SecView box) { return box.last(sizeof(SecTag)); }
SecView textOf(SecView box) { return box.subspan(secNonceSize, box.size() - secBoxOverhead); }

}  // namespace

void secFillRandom(std::span<std::byte> bytes) {
  secRequire(RAND_priv_bytes(out(bytes), length(bytes)) == 1, errSecNotAvailable);
}

SecDigest secHash(SecView message) {
  SecDigest digest;
  done(EVP_Digest(message.data(), message.size(), out(digest), nullptr, hash(), nullptr));
  return digest;
}

SecDigest secAuthenticate(SecView key, SecView message) {
  SecDigest digest;
  const auto context = hmac(key);
  std::size_t written = 0;
  done(EVP_MAC_update(context.get(), in(message), message.size()));
  done(EVP_MAC_final(context.get(), out(digest), &written, digest.size()));
  return digest;
}

SecTag secAuthenticateShort(SecView key, SecView message) {
  const SecDigest digest = secAuthenticate(key, message);
  SecTag tag;
  std::copy_n(digest.begin(), tag.size(), tag.begin());
  return tag;
}

bool secSame(SecView left, SecView right) {
  return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

SecSecret secDeriveKey(SecView key, SecView salt, std::string_view purpose) {
  const OSSL_PARAM parameters[] = {
      digestName(), octets(OSSL_KDF_PARAM_KEY, key), octets(OSSL_KDF_PARAM_SALT, salt),
      octets(OSSL_KDF_PARAM_INFO, secBytesOf(purpose)), OSSL_PARAM_construct_end()};
  return derive(hkdf(), parameters);
}

SecSecret secStretch(SecView passphrase, SecView salt, SecCost cost) {
  std::uint64_t n = std::uint64_t{1} << cost.logN;
  std::uint32_t r = cost.r;
  std::uint32_t p = cost.p;
  // The preset limit is below what N = 2^17 takes; half as much again covers the blocks beside the table.
  std::uint64_t memory = 128 * n * r / 2 * 3;
  const OSSL_PARAM parameters[] = {octets(OSSL_KDF_PARAM_PASSWORD, passphrase),
                                   octets(OSSL_KDF_PARAM_SALT, salt),
                                   OSSL_PARAM_construct_uint64(OSSL_KDF_PARAM_SCRYPT_N, &n),
                                   OSSL_PARAM_construct_uint32(OSSL_KDF_PARAM_SCRYPT_R, &r),
                                   OSSL_PARAM_construct_uint32(OSSL_KDF_PARAM_SCRYPT_P, &p),
                                   OSSL_PARAM_construct_uint64(OSSL_KDF_PARAM_SCRYPT_MAXMEM, &memory),
                                   OSSL_PARAM_construct_end()};
  return derive(own(EVP_KDF_fetch(nullptr, "SCRYPT", nullptr)).get(), parameters);
}

SecBytes secSeal(SecView key, SecView associated, SecView plaintext) {
  SecBytes box(plaintext.size() + secBoxOverhead);
  const std::span<std::byte> nonce = std::span(box).first(secNonceSize);
  const std::span<std::byte> tag = std::span(box).last(sizeof(SecTag));
  secFillRandom(nonce);
  const auto context = own(EVP_CIPHER_CTX_new());
  int written = 0;
  done(EVP_EncryptInit_ex(context.get(), cipher(), nullptr, in(key), in(nonce)));
  done(EVP_EncryptUpdate(context.get(), nullptr, &written, in(associated), length(associated)));
  done(EVP_EncryptUpdate(context.get(), out(box) + secNonceSize, &written, in(plaintext), length(plaintext)));
  done(EVP_EncryptFinal_ex(context.get(), out(tag), &written));
  done(EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, static_cast<int>(tag.size()), out(tag)));
  return box;
}

SecSecret secOpen(SecView key, SecView associated, SecView box) {
  secRequire(box.size() >= secBoxOverhead, errSecDecode);
  const SecView text = textOf(box);
  SecTag tag;
  std::copy_n(tagOf(box).begin(), tag.size(), tag.begin());
  SecSecret plaintext(text.size());
  const auto context = own(EVP_CIPHER_CTX_new());
  int written = 0;
  done(EVP_DecryptInit_ex(context.get(), cipher(), nullptr, in(key), in(nonceOf(box))));
  done(EVP_DecryptUpdate(context.get(), nullptr, &written, in(associated), length(associated)));
  done(EVP_DecryptUpdate(context.get(), out(plaintext.writableBytes()), &written, in(text), length(text)));
  done(EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, static_cast<int>(tag.size()), out(tag)));
  secRequire(EVP_DecryptFinal_ex(context.get(), out(tag), &written) == 1, errSecDecode);
  return plaintext;
}
