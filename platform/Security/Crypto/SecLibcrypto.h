#pragma once

#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>
#include <openssl/params.h>

#include <cstddef>
#include <memory>
#include <span>

#include <Security/Crypto/SecLibraryContext.h>
#include <Security/SecFailure.h>

// How the stores call libcrypto: handles that free themselves, results as failures, bytes as libcrypto
// takes them.

struct SecLibcryptoFree {
  void operator()(BIGNUM* number) const { BN_clear_free(number); }
  void operator()(BN_CTX* context) const { BN_CTX_free(context); }
  void operator()(EVP_CIPHER* cipher) const { EVP_CIPHER_free(cipher); }
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
  void operator()(EVP_KDF* kdf) const { EVP_KDF_free(kdf); }
  void operator()(EVP_KDF_CTX* context) const { EVP_KDF_CTX_free(context); }
  void operator()(EVP_MAC* mac) const { EVP_MAC_free(mac); }
  void operator()(EVP_MAC_CTX* context) const { EVP_MAC_CTX_free(context); }
  void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
};

template <class Handle>
using SecOwned = std::unique_ptr<Handle, SecLibcryptoFree>;

/// Fails with errSecAllocate if libcrypto returned null.
template <class Handle>
Handle* secRequireHandle(Handle* handle) {
  secRequire(handle != nullptr, errSecAllocate);
  return handle;
}

template <class Handle>
SecOwned<Handle> secOwn(Handle* handle) {
  return SecOwned<Handle>(secRequireHandle(handle));
}

/// Fails with errSecAllocate unless libcrypto returned 1.
inline void secRequireDone(int result) { secRequire(result == 1, errSecAllocate); }

inline const unsigned char* secIn(std::span<const std::byte> bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}
inline unsigned char* secOut(std::span<std::byte> bytes) {
  return reinterpret_cast<unsigned char*>(bytes.data());
}
inline int secLength(std::span<const std::byte> bytes) { return static_cast<int>(bytes.size()); }

inline OSSL_PARAM secOctets(const char* name, std::span<const std::byte> bytes) {
  return OSSL_PARAM_construct_octet_string(name, const_cast<std::byte*>(bytes.data()), bytes.size());
}
