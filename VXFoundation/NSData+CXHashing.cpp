#include <VXFoundation/NSData+CXHashing.h>

#include <CommonCrypto/CommonDigest.h>
#include <CommonCrypto/CommonHMAC.h>

#include <cstdio>
#include <cstdlib>

namespace CXHashing {

NSRef<NSData> MD5Hash(const NSData& data) {
  unsigned char digest[CC_MD5_DIGEST_LENGTH];
  CC_MD5(data.bytes().data(), static_cast<CC_LONG>(data.length()), digest);
  return NSData::dataWithBytes(digest, sizeof digest);
}

NSRef<NSData> SHA1Hash(const NSData& data) {
  unsigned char digest[CC_SHA1_DIGEST_LENGTH];
  CC_SHA1(data.bytes().data(), static_cast<CC_LONG>(data.length()), digest);
  return NSData::dataWithBytes(digest, sizeof digest);
}

NSRef<NSData> HMAC_SHA1_WithSecretKey(const NSData& data, const NSRefPtr<NSData>& secretKey) {
  if (!secretKey) {
    std::fputs("HMAC_SHA1_WithSecretKey: the secret key is nil\n", stderr);
    std::abort();
  }
  unsigned char digest[CC_SHA1_DIGEST_LENGTH];
  CCHmac(kCCHmacAlgSHA1, secretKey->bytes().data(), secretKey->length(), data.bytes().data(), data.length(),
         digest);
  return NSData::dataWithBytes(digest, sizeof digest);
}

}  // namespace CXHashing
