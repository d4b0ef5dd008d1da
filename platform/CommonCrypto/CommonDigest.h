#pragma once

#include <Foundation/NSExport.h>

#include <cstddef>
#include <cstdint>

/// @file
/// Message digests over libcrypto, safe on any thread. A libcrypto that does not offer the algorithm (its
/// configuration may forbid it) ends the process with a message on standard error: there is no other
/// honest answer, as the operations cannot fail.

/// A length in bytes, below 4 GiB.
using CC_LONG = std::uint32_t;

/// In bytes: the lengths of the digests, and of the blocks that SHA-1 takes in at once.
///@{
inline constexpr std::size_t CC_MD5_DIGEST_LENGTH = 16;
inline constexpr std::size_t CC_SHA1_DIGEST_LENGTH = 20;
inline constexpr std::size_t CC_SHA1_BLOCK_BYTES = 64;
///@}

/// Writes the MD5 digest (RFC 1321) of `length` bytes to `digest`, 16 bytes, and answers it. `data` may be
/// null for a length of 0.
NS_EXPORT unsigned char* CC_MD5(const void* data, CC_LONG length, unsigned char* digest);

/// Writes the SHA-1 digest (FIPS 180) of `length` bytes to `digest`, 20 bytes, and answers it. `data` may be
/// null for a length of 0.
NS_EXPORT unsigned char* CC_SHA1(const void* data, CC_LONG length, unsigned char* digest);
