#pragma once

#include <Foundation/NSExport.h>

#include <cstddef>
#include <cstdint>

/// @file
/// Message digests over libcrypto. All functions are thread-safe. The host's configuration of libcrypto does
/// not matter here. If libcrypto was built without the algorithm, the process ends with a message on standard
/// error: the operations cannot fail, and a wrong digest is worse.

/// A length in bytes, below 4 GiB.
using CC_LONG = std::uint32_t;

/// The lengths of the digests, and of the blocks that SHA-1 processes, in bytes.
///@{
inline constexpr std::size_t CC_MD5_DIGEST_LENGTH = 16;
inline constexpr std::size_t CC_SHA1_DIGEST_LENGTH = 20;
inline constexpr std::size_t CC_SHA1_BLOCK_BYTES = 64;
///@}

/// Writes the MD5 digest (RFC 1321) of `length` bytes to `digest`, 16 bytes, and returns `digest`. `data`
/// may be null for a length of 0.
NS_EXPORT unsigned char* CC_MD5(const void* data, CC_LONG length, unsigned char* digest);

/// Writes the SHA-1 digest (FIPS 180) of `length` bytes to `digest`, 20 bytes, and returns `digest`. `data`
/// may be null for a length of 0.
NS_EXPORT unsigned char* CC_SHA1(const void* data, CC_LONG length, unsigned char* digest);
