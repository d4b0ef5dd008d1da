#include <CommonCrypto/Internal/CCDigest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "libcrypto cannot compute a digest: %s\n", what);
  std::abort();
}

}  // namespace

const CCDigest& CCDigest::MD5() {
  static const CCDigest digest("MD5");
  return digest;
}

const CCDigest& CCDigest::SHA1() {
  static const CCDigest digest("SHA1");
  return digest;
}

// The algorithm is never released: a host's exit handlers may still need a digest.
CCDigest::CCDigest(const char* name) : algorithm_(EVP_MD_fetch(nullptr, name, nullptr)) {
  if (!algorithm_) fail(name);
}

EVP_MD_CTX* CCDigest::begin() const {
  [[gnu::tls_model("initial-exec")]] thread_local const std::unique_ptr<EVP_MD_CTX, FreeContext> context(
      EVP_MD_CTX_new());
  require(EVP_DigestInit_ex2(context.get(), algorithm_, nullptr));
  return context.get();
}

void CCDigest::require(int success) {
  if (success != 1) fail("an operation failed");
}
