#include <CommonCrypto/CommonDigest.h>

#include <CommonCrypto/Internal/CCDigest.h>

CCDigestContext::~CCDigestContext() {
  if (begun_) CCDigest::discard(*this);
}

unsigned char* CC_MD5(const void* data, CC_LONG length, unsigned char* digest) {
  CCDigest::of<CCMD5>(digest, CCDigest::Part{data, length});
  return digest;
}

int CC_MD5_Init(CC_MD5_CTX* context) { return CCDigest::begin<CCMD5>(*context); }
int CC_MD5_Update(CC_MD5_CTX* context, const void* data, std::size_t length) {
  return CCDigest::update<CCMD5>(*context, {data, length});
}
int CC_MD5_Final(unsigned char* digest, CC_MD5_CTX* context) {
  return CCDigest::finish<CCMD5>(*context, digest);
}

unsigned char* CC_SHA1(const void* data, CC_LONG length, unsigned char* digest) {
  CCDigest::of<CCSHA1>(digest, CCDigest::Part{data, length});
  return digest;
}

int CC_SHA1_Init(CC_SHA1_CTX* context) { return CCDigest::begin<CCSHA1>(*context); }
int CC_SHA1_Update(CC_SHA1_CTX* context, const void* data, std::size_t length) {
  return CCDigest::update<CCSHA1>(*context, {data, length});
}
int CC_SHA1_Final(unsigned char* digest, CC_SHA1_CTX* context) {
  return CCDigest::finish<CCSHA1>(*context, digest);
}

unsigned char* CC_SHA256(const void* data, CC_LONG length, unsigned char* digest) {
  CCDigest::of<CCSHA256>(digest, CCDigest::Part{data, length});
  return digest;
}

int CC_SHA256_Init(CC_SHA256_CTX* context) { return CCDigest::begin<CCSHA256>(*context); }
int CC_SHA256_Update(CC_SHA256_CTX* context, const void* data, std::size_t length) {
  return CCDigest::update<CCSHA256>(*context, {data, length});
}
int CC_SHA256_Final(unsigned char* digest, CC_SHA256_CTX* context) {
  return CCDigest::finish<CCSHA256>(*context, digest);
}
