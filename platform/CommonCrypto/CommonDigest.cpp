#include "CommonCrypto/CommonDigest.h"

#include "CommonCrypto/Digest.h"

unsigned char* CC_MD5(const void* data, CC_LONG length, unsigned char* digest) {
  Digest::MD5().of(digest, Digest::Part{data, length});
  return digest;
}

unsigned char* CC_SHA1(const void* data, CC_LONG length, unsigned char* digest) {
  Digest::SHA1().of(digest, Digest::Part{data, length});
  return digest;
}
