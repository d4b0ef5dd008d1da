#pragma once

#include <CommonCrypto/CommonDigest.h>

#include <VXFoundation/VXFoundation.h>

#include "tests/support/Bytes.h"

/// Digests by the names in vectors/digests.tsv.

inline const char* const digestNames[] = {"md5", "sha1", "sha256", "hmac-sha1"};

/// Returns the digest of whole data.
inline Bytes wholeDigest(const std::string& name, const NSData& data, const NSRef<NSData>& key) {
  if (name == "md5") return bytesOf(CXHashing::MD5Hash(data));
  if (name == "sha1") return bytesOf(CXHashing::SHA1Hash(data));
  if (name == "hmac-sha1") return bytesOf(CXHashing::HMAC_SHA1_WithSecretKey(data, key));
  std::string digest(CC_SHA256_DIGEST_LENGTH, '\0');
  CC_SHA256(data.bytes().data(), static_cast<CC_LONG>(data.length()),
            reinterpret_cast<unsigned char*>(digest.data()));
  return digest;
}

inline VXDigest digestNamed(const std::string& name, const NSRef<NSData>& key) {
  return name == "md5"      ? VXDigest::MD5()
         : name == "sha1"   ? VXDigest::SHA1()
         : name == "sha256" ? VXDigest::SHA256()
                            : VXDigest::HMAC_SHA1_WithSecretKey(*key);
}
