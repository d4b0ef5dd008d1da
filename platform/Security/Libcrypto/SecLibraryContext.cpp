#include <Security/Libcrypto/SecLibraryContext.h>

#include <openssl/crypto.h>
#include <openssl/provider.h>
#include <openssl/rand.h>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

#include <Security/SecFailure.h>

namespace {

/// Like the context, its random generators are never freed; at exit libcrypto forgets where they are, which
/// the leak check would report.
void makeGenerators([[maybe_unused]] OSSL_LIB_CTX* context) {
#ifdef __SANITIZE_ADDRESS__
  __lsan_disable();
  unsigned char byte = 0;
  RAND_bytes_ex(context, &byte, 1, 0);
  RAND_priv_bytes_ex(context, &byte, 1, 0);
  __lsan_enable();
#endif
}

OSSL_LIB_CTX* makeContext() {
  OSSL_LIB_CTX* const context = OSSL_LIB_CTX_new();
  if (context && OSSL_PROVIDER_load(context, "default")) {
    makeGenerators(context);
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
