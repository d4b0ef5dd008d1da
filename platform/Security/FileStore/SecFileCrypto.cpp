#include <Security/FileStore/SecFileCrypto.h>

#include <openssl/core_names.h>
#include <openssl/crypto.h>

#include <algorithm>
#include <array>

#include <Security/Crypto/SecLibcrypto.h>

namespace {

OSSL_PARAM digestName() {
  static char name[] = "SHA256";
  return OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, name, 0);
}

// Looking an algorithm up by its name takes longer than most of what is done with it here. What was found is
// kept until the process ends.

const EVP_CIPHER* cipher() {
  static const EVP_CIPHER* const found =
      secRequireHandle(EVP_CIPHER_fetch(secLibraryContext(), "AES-256-GCM", nullptr));
  return found;
}

const EVP_MD* hash() {
  static const EVP_MD* const found = secRequireHandle(EVP_MD_fetch(secLibraryContext(), "SHA256", nullptr));
  return found;
}

EVP_KDF* hkdf() {
  static EVP_KDF* const found = secRequireHandle(EVP_KDF_fetch(secLibraryContext(), "HKDF", nullptr));
  return found;
}

SecOwned<EVP_MAC_CTX> makeHMAC() {
  const auto mac = secOwn(EVP_MAC_fetch(secLibraryContext(), "HMAC", nullptr));
  auto context = secOwn(EVP_MAC_CTX_new(mac.get()));
  const std::array<unsigned char, secKeySize> noKey{};
  const OSSL_PARAM parameters[] = {digestName(), OSSL_PARAM_construct_end()};
  secRequireDone(EVP_MAC_init(context.get(), noKey.data(), noKey.size(), parameters));
  return context;
}

/// A computation under a key of its own.
SecOwned<EVP_MAC_CTX> hmac(SecView key) {
  static const EVP_MAC_CTX* const made = makeHMAC().release();
  auto context = secOwn(EVP_MAC_CTX_dup(made));
  secRequireDone(EVP_MAC_init(context.get(), secIn(key), key.size(), nullptr));
  return context;
}

SecSecret derive(EVP_KDF* kdf, const OSSL_PARAM* parameters, std::size_t size) {
  const auto context = secOwn(EVP_KDF_CTX_new(kdf));
  SecSecret key(size);
  secRequireDone(EVP_KDF_derive(context.get(), secOut(key.writableBytes()), size, parameters));
  return key;
}

SecView nonceOf(SecView box) { return box.first(secNonceSize); }
SecView textOf(SecView box) { return box.subspan(secNonceSize, box.size() - secBoxOverhead); }

}  // namespace

SecSecret secRandomSecret(std::size_t size) {
  SecSecret secret(size);
  secFillRandom(secret.writableBytes());
  return secret;
}

SecDigest secHash(SecView message) {
  SecDigest digest;
  secRequireDone(EVP_Digest(message.data(), message.size(), secOut(digest), nullptr, hash(), nullptr));
  return digest;
}

SecDigest secAuthenticate(SecView key, SecView message) {
  SecDigest digest;
  const auto context = hmac(key);
  std::size_t written = 0;
  secRequireDone(EVP_MAC_update(context.get(), secIn(message), message.size()));
  secRequireDone(EVP_MAC_final(context.get(), secOut(digest), &written, digest.size()));
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

SecSecret secDeriveKey(SecView key, SecView salt, std::string_view purpose, std::size_t size) {
  const OSSL_PARAM parameters[] = {
      digestName(), secOctets(OSSL_KDF_PARAM_KEY, key), secOctets(OSSL_KDF_PARAM_SALT, salt),
      secOctets(OSSL_KDF_PARAM_INFO, secBytesOf(purpose)), OSSL_PARAM_construct_end()};
  return derive(hkdf(), parameters, size);
}

bool secIsReasonable(SecCost cost) {
  constexpr SecCost least{14, 8, 1};
  constexpr SecCost most{18, 8, 4};
  const auto within = [](std::uint8_t lower, std::uint8_t value, std::uint8_t upper) {
    return lower <= value && value <= upper;
  };
  return within(least.logN, cost.logN, most.logN) && within(least.r, cost.r, most.r) &&
         within(least.p, cost.p, most.p);
}

SecSecret secStretch(SecView passphrase, SecView salt, SecCost cost) {
  std::uint64_t n = std::uint64_t{1} << cost.logN;
  std::uint32_t r = cost.r;
  std::uint32_t p = cost.p;
  // The preset limit is below what N = 2^17 takes; half as much again covers the blocks next to the table.
  std::uint64_t memory = 128 * n * r / 2 * 3;
  const OSSL_PARAM parameters[] = {secOctets(OSSL_KDF_PARAM_PASSWORD, passphrase),
                                   secOctets(OSSL_KDF_PARAM_SALT, salt),
                                   OSSL_PARAM_construct_uint64(OSSL_KDF_PARAM_SCRYPT_N, &n),
                                   OSSL_PARAM_construct_uint32(OSSL_KDF_PARAM_SCRYPT_R, &r),
                                   OSSL_PARAM_construct_uint32(OSSL_KDF_PARAM_SCRYPT_P, &p),
                                   OSSL_PARAM_construct_uint64(OSSL_KDF_PARAM_SCRYPT_MAXMEM, &memory),
                                   OSSL_PARAM_construct_end()};
  return derive(secOwn(EVP_KDF_fetch(secLibraryContext(), "SCRYPT", nullptr)).get(), parameters, secKeySize);
}

SecBytes secSeal(SecView key, SecView associated, SecView plaintext) {
  SecBytes box(plaintext.size() + secBoxOverhead);
  const std::span<std::byte> nonce = std::span(box).first(secNonceSize);
  const std::span<std::byte> tag = std::span(box).last(sizeof(SecTag));
  secFillRandom(nonce);
  const auto context = secOwn(EVP_CIPHER_CTX_new());
  int written = 0;
  secRequireDone(EVP_EncryptInit_ex(context.get(), cipher(), nullptr, secIn(key), secIn(nonce)));
  secRequireDone(
      EVP_EncryptUpdate(context.get(), nullptr, &written, secIn(associated), secLength(associated)));
  secRequireDone(EVP_EncryptUpdate(context.get(), secOut(box) + secNonceSize, &written, secIn(plaintext),
                                   secLength(plaintext)));
  secRequireDone(EVP_EncryptFinal_ex(context.get(), secOut(tag), &written));
  secRequireDone(
      EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, static_cast<int>(tag.size()), secOut(tag)));
  return box;
}

SecSecret secOpen(SecView key, SecView associated, SecView box) {
  SecTag tag = secBoxTag(box);
  const SecView text = textOf(box);
  SecSecret plaintext(text.size());
  const auto context = secOwn(EVP_CIPHER_CTX_new());
  int written = 0;
  secRequireDone(EVP_DecryptInit_ex(context.get(), cipher(), nullptr, secIn(key), secIn(nonceOf(box))));
  secRequireDone(
      EVP_DecryptUpdate(context.get(), nullptr, &written, secIn(associated), secLength(associated)));
  secRequireDone(EVP_DecryptUpdate(context.get(), secOut(plaintext.writableBytes()), &written, secIn(text),
                                   secLength(text)));
  secRequireDone(
      EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, static_cast<int>(tag.size()), secOut(tag)));
  secRequire(EVP_DecryptFinal_ex(context.get(), secOut(tag), &written) == 1, errSecDecode);
  return plaintext;
}

SecTag secBoxTag(SecView box) {
  secRequire(box.size() >= secBoxOverhead, errSecDecode);
  return SecByteReader(box.last(sizeof(SecTag))).array<sizeof(SecTag)>();
}
