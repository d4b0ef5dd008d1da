#pragma once

#include <Foundation/NSExport.h>

#include <cstddef>
#include <cstdint>

/// The digest that an HMAC is built on.
enum CCHmacAlgorithm : std::uint32_t {
  kCCHmacAlgSHA1 = 0,  ///< SHA-1 (FIPS 180)
};

/// Writes the HMAC (RFC 2104) of the data under the key, which may have any length, to `mac`: 20 bytes for
/// SHA-1, the only algorithm. No copy of any part of the key stays in memory. Safe on any thread.
NS_EXPORT void CCHmac(CCHmacAlgorithm algorithm, const void* key, std::size_t keyLength, const void* data,
                      std::size_t dataLength, void* mac);
