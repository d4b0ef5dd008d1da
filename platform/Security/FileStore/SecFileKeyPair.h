#pragma once

#include <Security/FileStore/SecFileCrypto.h>

// X25519 (RFC 7748): what is sealed to the public half of a pair is opened with the private half alone.

using SecPublicKey = std::array<std::byte, 32>;

/// Both halves, the private one first: libcrypto computes the public half anew unless it is given.
struct SecKeyPair {
  static constexpr std::size_t size = 64;

  SecSecret halves;

  SecView privateHalf() const { return halves.bytes().first(size / 2); }
  SecView publicHalf() const { return halves.bytes().last(size / 2); }
};

/// Returns a new pair; fails with errSecNotAvailable if the system has no random bytes.
SecKeyPair secMakeKeyPair();

constexpr std::size_t secSealedOverhead = sizeof(SecPublicKey) + secBoxOverhead;

/// Encrypts `plaintext` for the owner of a public half: the public half of a pair made for this, then a box
/// under the key that both agree on (HKDF-SHA-256 of their shared secret and both public halves).
SecBytes secSealTo(SecView publicHalf, SecView associated, SecView plaintext);

/// Decrypts what was sealed to the pair; fails with errSecDecode if it was not, or was changed.
SecSecret secOpenSealed(const SecKeyPair& pair, SecView associated, SecView sealed);
