#pragma once

#include <Foundation/NSExport.h>

#include <cstddef>
#include <cstdint>

/// @file
/// Message digests over libcrypto. Safe on any thread, until the process has ended. The host's configuration
/// of libcrypto does not matter here.

/// A length in bytes, below 4 GiB.
using CC_LONG = std::uint32_t;

/// The lengths of the digests, and of the blocks that SHA-1 processes, in bytes.
///@{
inline constexpr std::size_t CC_MD5_DIGEST_LENGTH = 16;
inline constexpr std::size_t CC_SHA1_DIGEST_LENGTH = 20;
inline constexpr std::size_t CC_SHA1_BLOCK_BYTES = 64;
inline constexpr std::size_t CC_SHA256_DIGEST_LENGTH = 32;
///@}

/// Write the digest of `length` bytes to `digest` and return `digest`: 16 bytes of MD5 (RFC 1321), 20 of
/// SHA-1 or 32 of SHA-256 (FIPS 180). `data` may be null if `length` is 0.
///@{
NS_EXPORT unsigned char* CC_MD5(const void* data, CC_LONG length, unsigned char* digest);
NS_EXPORT unsigned char* CC_SHA1(const void* data, CC_LONG length, unsigned char* digest);
NS_EXPORT unsigned char* CC_SHA256(const void* data, CC_LONG length, unsigned char* digest);
///@}

/// What the kinds of digests in progress have in common: the state, which is cleansed when the digest ends or
/// the object is destroyed. For one thread at a time.
class NS_EXPORT CCDigestContext {
 public:
  CCDigestContext(const CCDigestContext&) = delete;
  CCDigestContext& operator=(const CCDigestContext&) = delete;

 protected:
  CCDigestContext() = default;
  ~CCDigestContext();

 private:
  friend class CCDigest;
  bool begun_ = false;
  alignas(std::uint64_t) unsigned char state_[112];  // in libcrypto's own form
};

/// Digests in progress.
///@{
struct CC_MD5_CTX : CCDigestContext {};
struct CC_SHA1_CTX : CCDigestContext {};
struct CC_SHA256_CTX : CCDigestContext {};
///@}

/// Begin a digest, in place of one that may be in progress. They always return 1.
///@{
NS_EXPORT int CC_MD5_Init(CC_MD5_CTX* context);
NS_EXPORT int CC_SHA1_Init(CC_SHA1_CTX* context);
NS_EXPORT int CC_SHA256_Init(CC_SHA256_CTX* context);
///@}

/// Add `length` bytes to a digest; nothing limits how many there are in all. `data` may be null if `length`
/// is 0. They always return 1; a digest that was not begun ends the process with a message.
///@{
NS_EXPORT int CC_MD5_Update(CC_MD5_CTX* context, const void* data, std::size_t length);
NS_EXPORT int CC_SHA1_Update(CC_SHA1_CTX* context, const void* data, std::size_t length);
NS_EXPORT int CC_SHA256_Update(CC_SHA256_CTX* context, const void* data, std::size_t length);
///@}

/// End a digest, and write it to `digest`: 16, 20 or 32 bytes. They always return 1; a digest that was not
/// begun ends the process with a message.
///@{
NS_EXPORT int CC_MD5_Final(unsigned char* digest, CC_MD5_CTX* context);
NS_EXPORT int CC_SHA1_Final(unsigned char* digest, CC_SHA1_CTX* context);
NS_EXPORT int CC_SHA256_Final(unsigned char* digest, CC_SHA256_CTX* context);
///@}
