#include <Security/Crypto/SecLibraryContext.h>

#include <openssl/crypto.h>
#include <openssl/provider.h>

#include <Security/SecFailure.h>

namespace {

OSSL_LIB_CTX* makeContext() {
  OSSL_LIB_CTX* const context = OSSL_LIB_CTX_new();
  if (context && OSSL_PROVIDER_load(context, "default")) {
    return context;
  }
  OSSL_LIB_CTX_free(context);
  throw SecFailure{errSecAllocate};
}

}  // namespace

OSSL_LIB_CTX* secLibraryContext() {
  static OSSL_LIB_CTX* const context = makeContext();
  return context;
}
