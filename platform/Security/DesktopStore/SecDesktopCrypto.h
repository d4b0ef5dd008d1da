#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <Security/SecFailure.h>
#include <Security/SecSecret.h>

/// @file
/// What the desktop store needs of libcrypto. Each fails with errSecAllocate if libcrypto fails.

/// One side of the key exchange "dh-ietf1024-sha256-aes128-cbc-pkcs7": Diffie-Hellman in the second Oakley
/// group (RFC 2409, section 6.2) with values of 128 bytes, then HKDF-SHA-256 (RFC 5869) without salt and
/// info.
class SecDesktopExchange {
 public:
  static constexpr std::size_t valueSize = 128;

  /// Draws a private value.
  SecDesktopExchange();
  const std::vector<std::byte>& publicValue() const { return publicValue_; }
  /// Returns the key of 16 bytes that is shared with the owner of the other public value. There is no value,
  /// with a chance of 1 in 256, where services derive different keys: if the shared value begins with a zero,
  /// which KWallet drops and others keep. Fails with errSecDecode for a peer value that is not between 2 and
  /// p - 2, which would make the key predictable.
  std::optional<SecSecret> sharedKey(std::span<const std::byte> peerValue) const;

 private:
  SecSecret privateValue_;
  std::vector<std::byte> publicValue_;
};

/// An initialisation vector and what was encrypted with it.
struct SecDesktopBox {
  std::vector<std::byte> vector;
  std::vector<std::byte> ciphertext;
};

/// Encrypt and decrypt with AES-128-CBC and PKCS #7 padding, as the exchange's name says. There is no
/// authentication: it keeps secrets out of the bus's buffers and logs. Decrypting fails with errSecDecode if
/// the padding is malformed.
///@{
SecDesktopBox secDesktopEncrypt(std::span<const std::byte> key, std::span<const std::byte> plaintext);
SecSecret secDesktopDecrypt(std::span<const std::byte> key, std::span<const std::byte> vector,
                            std::span<const std::byte> ciphertext);
///@}

/// Returns the SHA-256 digest (FIPS 180-4) in lower-case base 16.
std::string secDesktopDigest(std::string_view content);
