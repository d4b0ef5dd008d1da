#include <CommonCrypto/CommonDigest.h>

#include <CommonCrypto/Internal/CCDigest.h>

CCDigestContext::~CCDigestContext() { CCDigest::discard(*this); }

unsigned char* CC_MD5(const void* data, CC_LONG length, unsigned char* digest) {
  CCDigest::MD5().of(digest, CCDigest::Part{data, length});
  return digest;
}

int CC_MD5_Init(CC_MD5_CTX* context) { return CCDigest::MD5().begin(*context); }
int CC_MD5_Update(CC_MD5_CTX* context, const void* data, std::size_t length) {
  return CCDigest::update(*context, {data, length});
}
int CC_MD5_Final(unsigned char* digest, CC_MD5_CTX* context) { return CCDigest::finish(*context, digest); }

unsigned char* CC_SHA1(const void* data, CC_LONG length, unsigned char* digest) {
  CCDigest::SHA1().of(digest, CCDigest::Part{data, length});
  return digest;
}

int CC_SHA1_Init(CC_SHA1_CTX* context) { return CCDigest::SHA1().begin(*context); }
int CC_SHA1_Update(CC_SHA1_CTX* context, const void* data, std::size_t length) {
  return CCDigest::update(*context, {data, length});
}
int CC_SHA1_Final(unsigned char* digest, CC_SHA1_CTX* context) { return CCDigest::finish(*context, digest); }

unsigned char* CC_SHA256(const void* data, CC_LONG length, unsigned char* digest) {
  CCDigest::SHA256().of(digest, CCDigest::Part{data, length});
  return digest;
}

int CC_SHA256_Init(CC_SHA256_CTX* context) { return CCDigest::SHA256().begin(*context); }
int CC_SHA256_Update(CC_SHA256_CTX* context, const void* data, std::size_t length) {
  return CCDigest::update(*context, {data, length});
}
int CC_SHA256_Final(unsigned char* digest, CC_SHA256_CTX* context) {
  return CCDigest::finish(*context, digest);
}
