#include <VXFoundation/NSData+CXHashing.h>

#include <CommonCrypto/CommonDigest.h>
#include <CommonCrypto/CommonHMAC.h>

#include <cstdio>
#include <cstdlib>

namespace CXHashing {
namespace {

template <std::size_t length, class Write>
NSRef<NSData> digest(Write write) {
  return NSData::dataWithLength(
      length, [&](std::span<std::byte> bytes) { write(reinterpret_cast<unsigned char*>(bytes.data())); });
}

}  // namespace

NSRef<NSData> MD5Hash(const NSData& data) {
  return digest<CC_MD5_DIGEST_LENGTH>(
      [&](unsigned char* place) { CC_MD5(data.bytes().data(), static_cast<CC_LONG>(data.length()), place); });
}

NSRef<NSData> SHA1Hash(const NSData& data) {
  return digest<CC_SHA1_DIGEST_LENGTH>([&](unsigned char* place) {
    CC_SHA1(data.bytes().data(), static_cast<CC_LONG>(data.length()), place);
  });
}

NSRef<NSData> HMAC_SHA1_WithSecretKey(const NSData& data, const NSRefPtr<NSData>& secretKey) {
  if (!secretKey) {
    std::fputs("HMAC_SHA1_WithSecretKey: the secret key is nil\n", stderr);
    std::abort();
  }
  return digest<CC_SHA1_DIGEST_LENGTH>([&](unsigned char* place) {
    CCHmac(kCCHmacAlgSHA1, secretKey->bytes().data(), secretKey->length(), data.bytes().data(), data.length(),
           place);
  });
}

}  // namespace CXHashing
