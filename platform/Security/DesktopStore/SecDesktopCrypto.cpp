#include <Security/DesktopStore/SecDesktopCrypto.h>

#include <openssl/core_names.h>

#include <Security/Crypto/SecLibcrypto.h>
#include <Security/Crypto/SecRandom.h>

namespace {

using View = std::span<const std::byte>;
using Number = SecOwned<BIGNUM>;

constexpr std::size_t keySize = 16;
constexpr std::size_t blockSize = 16;

Number prime() { return secOwn(BN_get_rfc2409_prime_1024(nullptr)); }

Number numberOf(View bytes) {
  auto number = secOwn(BN_secure_new());
  secRequire(BN_bin2bn(secIn(bytes), secLength(bytes), number.get()) != nullptr, errSecAllocate);
  BN_set_flags(number.get(), BN_FLG_CONSTTIME);
  return number;
}

void write(const Number& number, std::span<std::byte> bytes) {
  secRequire(BN_bn2binpad(number.get(), secOut(bytes), secLength(bytes)) == secLength(bytes), errSecAllocate);
}

Number power(const Number& base, const Number& exponent) {
  auto result = secOwn(BN_secure_new());
  const auto context = secOwn(BN_CTX_secure_new_ex(secLibraryContext()));
  secRequireDone(BN_mod_exp(result.get(), base.get(), exponent.get(), prime().get(), context.get()));
  return result;
}

/// Whether the value generates more than a subgroup of one or two elements.
bool isPublicValue(const Number& value) {
  const Number last = prime();
  secRequireDone(BN_sub_word(last.get(), 1));
  return BN_cmp(value.get(), BN_value_one()) > 0 && BN_cmp(value.get(), last.get()) < 0;
}

auto cipher() { return secOwn(EVP_CIPHER_fetch(secLibraryContext(), "AES-128-CBC", nullptr)); }

SecSecret derive(View sharedValue) {
  static char digest[] = "SHA256";
  const OSSL_PARAM parameters[] = {OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest, 0),
                                   secOctets(OSSL_KDF_PARAM_KEY, sharedValue), OSSL_PARAM_construct_end()};
  const auto hkdf = secOwn(EVP_KDF_fetch(secLibraryContext(), "HKDF", nullptr));
  const auto context = secOwn(EVP_KDF_CTX_new(hkdf.get()));
  SecSecret key(keySize);
  secRequireDone(EVP_KDF_derive(context.get(), secOut(key.writableBytes()), keySize, parameters));
  return key;
}

}  // namespace

SecDesktopExchange::SecDesktopExchange() : privateValue_(valueSize), publicValue_(valueSize) {
  const auto generator = secOwn(BN_new());
  secRequireDone(BN_set_word(generator.get(), 2));
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
  const auto context = secOwn(EVP_CIPHER_CTX_new());
  int written = 0;
  int last = 0;
  secRequireDone(EVP_EncryptInit_ex(context.get(), cipher().get(), nullptr, secIn(key), secIn(box.vector)));
  secRequireDone(EVP_EncryptUpdate(context.get(), secOut(box.ciphertext), &written, secIn(plaintext),
                                   secLength(plaintext)));
  secRequireDone(EVP_EncryptFinal_ex(context.get(), secOut(box.ciphertext) + written, &last));
  box.ciphertext.resize(static_cast<std::size_t>(written) + static_cast<std::size_t>(last));
  return box;
}

SecSecret secDesktopDecrypt(View key, View vector, View ciphertext) {
  secRequire(vector.size() == blockSize, errSecDecode);
  SecSecret padded(ciphertext.size() + blockSize);
  const auto context = secOwn(EVP_CIPHER_CTX_new());
  unsigned char* const text = secOut(padded.writableBytes());
  int written = 0;
  int last = 0;
  secRequireDone(EVP_DecryptInit_ex(context.get(), cipher().get(), nullptr, secIn(key), secIn(vector)));
  secRequireDone(EVP_DecryptUpdate(context.get(), text, &written, secIn(ciphertext), secLength(ciphertext)));
  secRequire(EVP_DecryptFinal_ex(context.get(), text + written, &last) == 1, errSecDecode);
  return SecSecret(padded.bytes().first(static_cast<std::size_t>(written) + static_cast<std::size_t>(last)));
}

std::string secDesktopDigest(std::string_view content) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  const auto algorithm = secOwn(EVP_MD_fetch(secLibraryContext(), "SHA256", nullptr));
  secRequireDone(EVP_Digest(content.data(), content.size(), digest, &size, algorithm.get(), nullptr));
  std::string text;
  for (unsigned int i = 0; i < size; ++i)
    for (const unsigned int digit : {digest[i] / 16u, digest[i] % 16u})
      text.push_back("0123456789abcdef"[digit]);
  return text;
}
