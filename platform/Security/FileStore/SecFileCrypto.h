#pragma once

#include <cstdint>
#include <string_view>

#include <Security/FileStore/SecFileBytes.h>
#include <Security/SecSecret.h>

// What the file store asks of libcrypto. Each fails with errSecAllocate when libcrypto cannot do its work.

/// Fills `bytes` from the system's generator; fails with errSecNotAvailable when that has none to give.
void secFillRandom(std::span<std::byte> bytes);

template <std::size_t size>
std::array<std::byte, size> secRandomBytes() {
  std::array<std::byte, size> bytes;
  secFillRandom(bytes);
  return bytes;
}

/// SHA-256 (FIPS 180-4).
SecDigest secHash(SecView message);

/// HMAC-SHA-256 (RFC 2104), whole and cut to its first half.
SecDigest secAuthenticate(SecView key, SecView message);
SecTag secAuthenticateShort(SecView key, SecView message);

/// Whether two values are equal, in a time that does not tell where they differ.
bool secSame(SecView left, SecView right);

constexpr std::size_t secKeySize = 32;

/// A key for one purpose from another key: HKDF-SHA-256 (RFC 5869).
SecSecret secDeriveKey(SecView key, SecView salt, std::string_view purpose);

/// What scrypt (RFC 7914) asks of time and memory: N is 2 to the power of logN.
struct SecCost {
  std::uint8_t logN = 17;
  std::uint8_t r = 8;
  std::uint8_t p = 1;
};

/// A key from a passphrase: scrypt (RFC 7914). Takes 128 * N * r bytes of memory for a while.
SecSecret secStretch(SecView passphrase, SecView salt, SecCost cost);

constexpr std::size_t secNonceSize = 12;
constexpr std::size_t secBoxOverhead = secNonceSize + sizeof(SecTag);

/// AES-256-GCM (NIST SP 800-38D) under a fresh random nonce: nonce, ciphertext, tag.
SecBytes secSeal(SecView key, SecView associated, SecView plaintext);

/// The plaintext of a box, once its tag was verified; fails with errSecDecode when it does not hold.
SecSecret secOpen(SecView key, SecView associated, SecView box);
