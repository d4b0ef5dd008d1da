#include <Security/FileStore/SecFileKeyPair.h>

#include <openssl/core_names.h>

#include <Security/Crypto/SecLibcrypto.h>

namespace {

constexpr char algorithm[] = "X25519";

SecOwned<EVP_PKEY> import(OSSL_PARAM* parameters, int selection) {
  const auto context = secOwn(EVP_PKEY_CTX_new_from_name(secLibraryContext(), algorithm, nullptr));
  secRequireDone(EVP_PKEY_fromdata_init(context.get()));
  EVP_PKEY* key = nullptr;
  secRequireDone(EVP_PKEY_fromdata(context.get(), &key, selection, parameters));
  return secOwn(key);
}

SecOwned<EVP_PKEY> importPair(const SecKeyPair& pair) {
  OSSL_PARAM parameters[] = {secOctets(OSSL_PKEY_PARAM_PRIV_KEY, pair.privateHalf()),
                             secOctets(OSSL_PKEY_PARAM_PUB_KEY, pair.publicHalf()),
                             OSSL_PARAM_construct_end()};
  return import(parameters, EVP_PKEY_KEYPAIR);
}

SecOwned<EVP_PKEY> importPublicHalf(SecView half) {
  OSSL_PARAM parameters[] = {secOctets(OSSL_PKEY_PARAM_PUB_KEY, half), OSSL_PARAM_construct_end()};
  return import(parameters, EVP_PKEY_PUBLIC_KEY);
}

/// Returns the key that two pairs agree on: the one of `sender`, made for one message, and the recipient's.
SecSecret agree(const SecKeyPair& own, SecView other, SecView sender, SecView recipient) {
  const auto pair = importPair(own);
  const auto peer = importPublicHalf(other);
  const auto context = secOwn(EVP_PKEY_CTX_new_from_pkey(secLibraryContext(), pair.get(), nullptr));
  secRequireDone(EVP_PKEY_derive_init(context.get()));
  secRequireDone(EVP_PKEY_derive_set_peer_ex(context.get(), peer.get(), 0));
  SecSecret shared(secKeySize);
  std::size_t size = secKeySize;
  // It refuses public halves of low order, with which every pair would agree on the same key.
  secRequire(EVP_PKEY_derive(context.get(), secOut(shared.writableBytes()), &size) == 1, errSecDecode);
  SecByteWriter halves;
  halves.raw(sender).raw(recipient);
  return secDeriveKey(shared.bytes(), halves.bytes(), "VXFoundation sealed key");
}

}  // namespace

SecKeyPair secMakeKeyPair() {
  SecKeyPair pair{SecSecret(SecKeyPair::size)};
  const std::span<std::byte> halves = pair.halves.writableBytes();
  secFillRandom(halves.first(SecKeyPair::size / 2));
  const auto key = secOwn(EVP_PKEY_new_raw_private_key_ex(secLibraryContext(), algorithm, nullptr,
                                                          secIn(halves), SecKeyPair::size / 2));
  std::size_t size = SecKeyPair::size / 2;
  secRequireDone(EVP_PKEY_get_raw_public_key(key.get(), secOut(halves.last(SecKeyPair::size / 2)), &size));
  return pair;
}

SecBytes secSealTo(SecView publicHalf, SecView associated, SecView plaintext) {
  const SecKeyPair once = secMakeKeyPair();
  const SecSecret key = agree(once, publicHalf, once.publicHalf(), publicHalf);
  SecByteWriter sealed;
  return sealed.raw(once.publicHalf()).raw(secSeal(key.bytes(), associated, plaintext)).take();
}

SecSecret secOpenSealed(const SecKeyPair& pair, SecView associated, SecView sealed) {
  secRequire(sealed.size() >= secSealedOverhead, errSecDecode);
  const SecView sender = sealed.first(sizeof(SecPublicKey));
  const SecSecret key = agree(pair, sender, sender, pair.publicHalf());
  return secOpen(key.bytes(), associated, sealed.subspan(sizeof(SecPublicKey)));
}
