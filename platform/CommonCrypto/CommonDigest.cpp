#include <CommonCrypto/CommonDigest.h>

#include <CommonCrypto/Internal/CCDigest.h>

unsigned char* CC_MD5(const void* data, CC_LONG length, unsigned char* digest) {
  CCDigest::MD5().of(digest, CCDigest::Part{data, length});
  return digest;
}

unsigned char* CC_SHA1(const void* data, CC_LONG length, unsigned char* digest) {
  CCDigest::SHA1().of(digest, CCDigest::Part{data, length});
  return digest;
}
