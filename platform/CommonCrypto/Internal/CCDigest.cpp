#include <CommonCrypto/Internal/CCDigest.h>

#include <cstdio>
#include <cstdlib>

void CCDigest::discard(CCDigestContext& context) {
  OPENSSL_cleanse(context.state_, sizeof context.state_);
  context.begun_ = false;
}

void CCDigest::failAsNotBegun() {
  std::fputs("a digest is updated or ended that was not begun\n", stderr);
  std::abort();
}
