#include <CommonCrypto/Internal/CCDigest.h>

#include <openssl/provider.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "libcrypto cannot compute a digest: %s\n", what);
  std::abort();
}

void require(bool success, const char* what) {
  if (!success) fail(what);
}

/// A library context of our own: the configuration of the host's may exclude algorithms. It is never freed,
/// as libcrypto frees the host's before the last exit handlers have run.
OSSL_LIB_CTX* libraryContext() {
  static OSSL_LIB_CTX* const context = [] {
    OSSL_LIB_CTX* const made = OSSL_LIB_CTX_new();
    require(made && OSSL_PROVIDER_load(made, "default"), "there is no default provider");
    return made;
  }();
  return context;
}

// Making a context costs more than a short digest, so each thread keeps one. The two variables need no
// destruction: a digest may be wanted after the thread's destructors have run.
[[gnu::tls_model("initial-exec")]] constinit thread_local EVP_MD_CTX* keptContext = nullptr;
[[gnu::tls_model("initial-exec")]] constinit thread_local bool threadHasEnded = false;

EVP_MD_CTX* newContext() {
  EVP_MD_CTX* const context = EVP_MD_CTX_new();
  require(context, "there is not enough memory");
  return context;
}

struct FreeContextAtThreadEnd {
  ~FreeContextAtThreadEnd() {
    EVP_MD_CTX_free(keptContext);
    keptContext = nullptr;
    threadHasEnded = true;
  }
};

void keep(EVP_MD_CTX* context) {
  static thread_local const FreeContextAtThreadEnd atThreadEnd;
  static_cast<void>(atThreadEnd);
  keptContext = context;
}

}  // namespace

/// Looked up together: after libcrypto's own clean-up at exit, no other one can be.
struct CCDigest::Algorithms {
  CCDigest md5{"MD5"};
  CCDigest sha1{"SHA1"};
  CCDigest sha256{"SHA256"};
};

const CCDigest::Algorithms& CCDigest::algorithms() {
  static const Algorithms all;
  return all;
}

const CCDigest& CCDigest::MD5() { return algorithms().md5; }
const CCDigest& CCDigest::SHA1() { return algorithms().sha1; }
const CCDigest& CCDigest::SHA256() { return algorithms().sha256; }

CCDigest::CCDigest(const char* name) : algorithm_(EVP_MD_fetch(libraryContext(), name, nullptr)) {
  require(algorithm_, name);
}

void CCDigest::begin(EVP_MD_CTX* context) const {
  require(EVP_DigestInit_ex2(context, algorithm_, nullptr) == 1, "it does not begin");
}

void CCDigest::update(EVP_MD_CTX* context, const Part& part) {
  require(EVP_DigestUpdate(context, part.bytes, part.length) == 1, "it does not take bytes");
}

void CCDigest::finish(EVP_MD_CTX* context, unsigned char* digest) {
  require(EVP_DigestFinal_ex(context, digest, nullptr) == 1, "it does not end");
}

EVP_MD_CTX* CCDigest::borrow() {
  if (keptContext) return keptContext;
  EVP_MD_CTX* const context = newContext();
  if (!threadHasEnded) keep(context);
  return context;
}

void CCDigest::giveBack(EVP_MD_CTX* context) {
  if (context != keptContext) EVP_MD_CTX_free(context);
}

EVP_MD_CTX* CCDigest::stateOf(const CCDigestContext& context) {
  require(context.state_, "it was not begun");
  return static_cast<EVP_MD_CTX*>(context.state_);
}

int CCDigest::begin(CCDigestContext& context) const {
  if (!context.state_) context.state_ = newContext();
  return begin(stateOf(context)), 1;
}

int CCDigest::update(CCDigestContext& context, const Part& part) { return update(stateOf(context), part), 1; }

int CCDigest::finish(CCDigestContext& context, unsigned char* digest) {
  finish(stateOf(context), digest);
  return discard(context), 1;
}

void CCDigest::discard(CCDigestContext& context) {
  EVP_MD_CTX_free(static_cast<EVP_MD_CTX*>(std::exchange(context.state_, nullptr)));
}
