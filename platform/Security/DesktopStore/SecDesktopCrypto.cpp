#include <Security/DesktopStore/SecDesktopCrypto.h>

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>
#include <openssl/params.h>

#include <memory>

#include <Security/Crypto/SecLibraryContext.h>
#include <Security/Crypto/SecRandom.h>

namespace {

using View = std::span<const std::byte>;

struct Free {
  void operator()(BIGNUM* number) const { BN_clear_free(number); }
  void operator()(BN_CTX* context) const { BN_CTX_free(context); }
  void operator()(EVP_CIPHER* cipher) const { EVP_CIPHER_free(cipher); }
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
  void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
  void operator()(EVP_KDF* kdf) const { EVP_KDF_free(kdf); }
  void operator()(EVP_KDF_CTX* context) const { EVP_KDF_CTX_free(context); }
};

using Number = std::unique_ptr<BIGNUM, Free>;

template <class Handle>
std::unique_ptr<Handle, Free> own(Handle* handle) {
  secRequire(handle != nullptr, errSecAllocate);
  return std::unique_ptr<Handle, Free>(handle);
}

void require(int result) { secRequire(result == 1, errSecAllocate); }
const unsigned char* in(View bytes) { return reinterpret_cast<const unsigned char*>(bytes.data()); }
unsigned char* out(std::span<std::byte> bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }
int length(View bytes) { return static_cast<int>(bytes.size()); }

constexpr std::size_t keySize = 16;
constexpr std::size_t blockSize = 16;

Number prime() { return own(BN_get_rfc2409_prime_1024(nullptr)); }

Number numberOf(View bytes) {
  auto number = own(BN_secure_new());
  secRequire(BN_bin2bn(in(bytes), length(bytes), number.get()) != nullptr, errSecAllocate);
  BN_set_flags(number.get(), BN_FLG_CONSTTIME);
  return number;
}

void write(const Number& number, std::span<std::byte> bytes) {
  secRequire(BN_bn2binpad(number.get(), out(bytes), length(bytes)) == length(bytes), errSecAllocate);
}

Number power(const Number& base, const Number& exponent) {
  auto result = own(BN_secure_new());
  const auto context = own(BN_CTX_secure_new_ex(secLibraryContext()));
  require(BN_mod_exp(result.get(), base.get(), exponent.get(), prime().get(), context.get()));
  return result;
}

/// Whether the value generates more than a subgroup of one or two elements.
bool isPublicValue(const Number& value) {
  const Number last = prime();
  require(BN_sub_word(last.get(), 1));
  return BN_cmp(value.get(), BN_value_one()) > 0 && BN_cmp(value.get(), last.get()) < 0;
}

auto cipher() { return own(EVP_CIPHER_fetch(secLibraryContext(), "AES-128-CBC", nullptr)); }

SecSecret derive(View sharedValue) {
  static char digest[] = "SHA256";
  const OSSL_PARAM parameters[] = {
      OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest, 0),
      OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_KEY, const_cast<std::byte*>(sharedValue.data()),
                                        sharedValue.size()),
      OSSL_PARAM_construct_end()};
  const auto hkdf = own(EVP_KDF_fetch(secLibraryContext(), "HKDF", nullptr));
  const auto context = own(EVP_KDF_CTX_new(hkdf.get()));
  SecSecret key(keySize);
  require(EVP_KDF_derive(context.get(), out(key.writableBytes()), keySize, parameters));
  return key;
}

}  // namespace

SecDesktopExchange::SecDesktopExchange() : privateValue_(valueSize), publicValue_(valueSize) {
  const auto generator = own(BN_new());
  require(BN_set_word(generator.get(), 2));
  // As an exponent, a number that is not below the prime does as well.
  do {
    secFillRandom(privateValue_.writableBytes());
    write(power(generator, numberOf(privateValue_.bytes())), publicValue_);
  } while (publicValue_.front() == std::byte(0xFF));  // KWallet takes it for the sign of a negative number
}

std::optional<SecSecret> SecDesktopExchange::sharedKey(View peerValue) const {
  // Some services leave leading zeros out, others add one.
  secRequire(peerValue.size() <= 2 * valueSize, errSecDecode);
  const Number peer = numberOf(peerValue);
  secRequire(isPublicValue(peer), errSecDecode);
  SecSecret shared(valueSize);
  write(power(peer, numberOf(privateValue_.bytes())), shared.writableBytes());
  if (shared.bytes().front() == std::byte(0)) return std::nullopt;
  return derive(shared.bytes());
}

SecDesktopBox secDesktopEncrypt(View key, View plaintext) {
  SecDesktopBox box{std::vector<std::byte>(blockSize), std::vector<std::byte>(plaintext.size() + blockSize)};
  secFillRandom(box.vector);
  const auto context = own(EVP_CIPHER_CTX_new());
  int written = 0;
  int last = 0;
  require(EVP_EncryptInit_ex(context.get(), cipher().get(), nullptr, in(key), in(box.vector)));
  require(EVP_EncryptUpdate(context.get(), out(box.ciphertext), &written, in(plaintext), length(plaintext)));
  require(EVP_EncryptFinal_ex(context.get(), out(box.ciphertext) + written, &last));
  box.ciphertext.resize(static_cast<std::size_t>(written + last));
  return box;
}

SecSecret secDesktopDecrypt(View key, View vector, View ciphertext) {
  secRequire(vector.size() == blockSize, errSecDecode);
  SecSecret padded(ciphertext.size() + blockSize);
  const auto context = own(EVP_CIPHER_CTX_new());
  unsigned char* const text = out(padded.writableBytes());
  int written = 0;
  int last = 0;
  require(EVP_DecryptInit_ex(context.get(), cipher().get(), nullptr, in(key), in(vector)));
  require(EVP_DecryptUpdate(context.get(), text, &written, in(ciphertext), length(ciphertext)));
  secRequire(EVP_DecryptFinal_ex(context.get(), text + written, &last) == 1, errSecDecode);
  return SecSecret(padded.bytes().first(static_cast<std::size_t>(written + last)));
}

std::string secDesktopDigest(std::string_view content) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  const auto algorithm = own(EVP_MD_fetch(secLibraryContext(), "SHA256", nullptr));
  require(EVP_Digest(content.data(), content.size(), digest, &size, algorithm.get(), nullptr));
  std::string text;
  for (unsigned int i = 0; i < size; ++i)
    for (const unsigned int digit : {digest[i] / 16u, digest[i] % 16u})
      text.push_back("0123456789abcdef"[digit]);
  return text;
}
