#pragma once

#include <cstdint>
#include <string_view>

#include <Security/Crypto/SecRandom.h>
#include <Security/FileStore/SecFileBytes.h>
#include <Security/SecSecret.h>

// What the file store needs from libcrypto. All functions fail with errSecAllocate if libcrypto cannot do its
// work, and are safe from any thread.

/// Returns a secret of random bytes; fails as secFillRandom.
SecSecret secRandomSecret(std::size_t size);

/// Returns the SHA-256 digest (FIPS 180-4).
SecDigest secHash(SecView message);

/// Returns the HMAC-SHA-256 (RFC 2104), whole or cut to its first half.
///@{
SecDigest secAuthenticate(SecView key, SecView message);
SecTag secAuthenticateShort(SecView key, SecView message);
///@}

/// Returns whether two values are equal, in a time that does not depend on where they differ.
bool secSame(SecView left, SecView right);

constexpr std::size_t secKeySize = 32;

/// Derives one or several keys for one purpose from another key: HKDF-SHA-256 (RFC 5869).
SecSecret secDeriveKey(SecView key, SecView salt, std::string_view purpose, std::size_t size = secKeySize);

/// The cost of scrypt (RFC 7914) in time and memory: N is 2 to the power of logN.
struct SecCost {
  std::uint8_t logN = 17;
  std::uint8_t r = 8;
  std::uint8_t p = 1;
};

/// Returns whether the cost is one that a version of this library may have chosen. A file that asks for more
/// or less is refused before anything is derived.
bool secIsReasonable(SecCost cost);

/// Derives a key from a passphrase: scrypt (RFC 7914). Needs 128 * N * r bytes of memory in the meantime.
SecSecret secStretch(SecView passphrase, SecView salt, SecCost cost);

constexpr std::size_t secNonceSize = 12;
constexpr std::size_t secBoxOverhead = secNonceSize + sizeof(SecTag);

/// Encrypts with AES-256-GCM (NIST SP 800-38D) under a new random nonce. Returns the box: nonce, ciphertext,
/// tag.
SecBytes secSeal(SecView key, SecView associated, SecView plaintext);

/// Returns the plaintext of a box after its tag was verified; fails with errSecDecode if the tag is wrong.
SecSecret secOpen(SecView key, SecView associated, SecView box);

/// Returns the tag at the end of a box; fails with errSecDecode if the bytes are too short for one.
SecTag secBoxTag(SecView box);
