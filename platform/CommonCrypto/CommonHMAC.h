#pragma once

#include <Foundation/NSExport.h>

#include <cstddef>
#include <cstdint>

#include <CommonCrypto/CommonDigest.h>

/// The digest that an HMAC is built on.
enum CCHmacAlgorithm : std::uint32_t {
  kCCHmacAlgSHA1 = 0,  ///< SHA-1 (FIPS 180)
};

/// Writes the HMAC (RFC 2104) of the data under the key, which may have any length, to `mac`: 20 bytes for
/// SHA-1, the only algorithm. No copy of any part of the key stays in memory. Safe on any thread.
NS_EXPORT void CCHmac(CCHmacAlgorithm algorithm, const void* key, std::size_t keyLength, const void* data,
                      std::size_t dataLength, void* mac);

/// An HMAC in progress: the digests of the two keys that RFC 2104 derives from the key, and of what follows
/// them. Cleansed when the HMAC ends or the object is destroyed. For one thread at a time.
struct CCHmacContext {
  CC_SHA1_CTX inner;  ///< the digest of the inner key and the data
  CC_SHA1_CTX outer;  ///< the digest of the outer key
};

/// Begins an HMAC under the key, in place of one that may be in progress.
NS_EXPORT void CCHmacInit(CCHmacContext* context, CCHmacAlgorithm algorithm, const void* key,
                          std::size_t keyLength);
/// Adds data to an HMAC; nothing limits how much there is in all.
NS_EXPORT void CCHmacUpdate(CCHmacContext* context, const void* data, std::size_t dataLength);
/// Ends an HMAC, and writes it to `mac` as CCHmac does.
NS_EXPORT void CCHmacFinal(CCHmacContext* context, void* mac);
