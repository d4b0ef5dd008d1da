#pragma once

#include <Foundation/NSData.h>

/// NSData(CXHashing): message digests of bytes, as raw bytes. All functions are thread-safe.
namespace CXHashing {

/// Returns the 16 bytes of the MD5 digest (RFC 1321).
/// Quirk: if there are 4 GiB or more, only the first `length` modulo 2^32 bytes are hashed, as the platform's
/// digest operations take a 32-bit length.
NS_EXPORT NSRef<NSData> MD5Hash(const NSData& data);

/// Returns the 20 bytes of the SHA-1 digest (FIPS 180).
/// Quirk: data of 4 GiB or more is truncated as in MD5Hash.
NS_EXPORT NSRef<NSData> SHA1Hash(const NSData& data);

/// Returns the 20 bytes of the HMAC with SHA-1 (RFC 2104) under a key of any length, including an empty one.
/// Nothing is truncated. A nil key ends the process with a message on standard error.
NS_EXPORT NSRef<NSData> HMAC_SHA1_WithSecretKey(const NSData& data, const NSRefPtr<NSData>& secretKey);

}  // namespace CXHashing
