// Replacements for libcrypto's functions, which see the keys.
#include <dlfcn.h>
#include <openssl/core_names.h>
#include <openssl/params.h>

#include "Calls.h"

namespace {

/// What a passphrase costs on purpose would take the tests hours.
void makeCheap(const OSSL_PARAM* parameters) {
  const OSSL_PARAM* const cost = OSSL_PARAM_locate_const(parameters, OSSL_KDF_PARAM_SCRYPT_N);
  if (cost) *static_cast<std::uint64_t*>(cost->data) = 16;
}

}  // namespace

#define REPLACE(name, parameters, arguments, before, after)                                  \
  int name parameters {                                                                      \
    static const auto real = reinterpret_cast<int(*) parameters>(::dlsym(RTLD_NEXT, #name)); \
    before;                                                                                  \
    const int done = real arguments;                                                         \
    after;                                                                                   \
    return done;                                                                             \
  }

#pragma GCC visibility push(default)
extern "C" {

REPLACE(EVP_KDF_derive,
        (EVP_KDF_CTX * context, unsigned char* key, size_t size, const OSSL_PARAM* parameters),
        (context, key, size, parameters), makeCheap(parameters), Calls::noteKeys(key, size))
REPLACE(EVP_PKEY_derive, (EVP_PKEY_CTX * context, unsigned char* key, size_t* size), (context, key, size), ,
        Calls::noteKeys(key, *size))
REPLACE(EVP_MAC_init,
        (EVP_MAC_CTX * context, const unsigned char* key, size_t size, const OSSL_PARAM* parameters),
        (context, key, size, parameters), , Calls::noteKeys(key, size))
REPLACE(EVP_EncryptInit_ex,
        (EVP_CIPHER_CTX * context, const EVP_CIPHER* type, ENGINE* engine, const unsigned char* key,
         const unsigned char* nonce),
        (context, type, engine, key, nonce), , Calls::noteKeys(key, 32))
REPLACE(EVP_DecryptInit_ex,
        (EVP_CIPHER_CTX * context, const EVP_CIPHER* type, ENGINE* engine, const unsigned char* key,
         const unsigned char* nonce),
        (context, type, engine, key, nonce), , Calls::noteKeys(key, 32))
}
#pragma GCC visibility pop
