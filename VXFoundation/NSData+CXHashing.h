#pragma once

#include <Foundation/NSData.h>

/// NSData(CXHashing): message digests of bytes, as raw bytes. All are safe on any thread. A libcrypto that
/// does not offer the algorithm ends the process with a message on standard error.
namespace CXHashing {

/// The 16 bytes of the MD5 digest (RFC 1321).
/// Quirk: of 4 GiB and more, only the first `length` modulo 2^32 bytes count, as the platform's digest
/// operations take a 32-bit length.
NS_EXPORT NSRef<NSData> MD5Hash(const NSData& data);

/// The 20 bytes of the SHA-1 digest (FIPS 180).
/// Quirk: 4 GiB and more are cut as by MD5Hash.
NS_EXPORT NSRef<NSData> SHA1Hash(const NSData& data);

/// The 20 bytes of the HMAC with SHA-1 (RFC 2104) under a key of any length, the empty one included.
/// Nothing is cut. Nil as the key ends the process with a message on standard error.
NS_EXPORT NSRef<NSData> HMAC_SHA1_WithSecretKey(const NSData& data, const NSRefPtr<NSData>& secretKey);

}  // namespace CXHashing
