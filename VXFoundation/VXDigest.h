#pragma once

#include <Foundation/NSData.h>

#include <memory>
#include <span>

/// The digest of bytes that come in pieces, of any size and number: that of all of them in order, by the
/// standard, with no limit on their length. What it has taken in is cleansed from memory when it ends. It can
/// be moved, but not copied. For one thread at a time.
class NS_EXPORT VXDigest {
 public:
  /// Begin an MD5 (RFC 1321), SHA-1 or SHA-256 (FIPS 180) digest.
  ///@{
  static VXDigest MD5();
  static VXDigest SHA1();
  static VXDigest SHA256();
  ///@}
  /// Begins an HMAC with SHA-1 (RFC 2104) under a key of any length, which is not kept.
  static VXDigest HMAC_SHA1_WithSecretKey(const NSData& secretKey);

  /// Moves a digest in progress, or one that has ended.
  ///@{
  VXDigest(VXDigest&& other) noexcept;
  VXDigest& operator=(VXDigest&& other) noexcept;
  ~VXDigest();
  ///@}

  /// Takes in the next bytes. Raises the internal-inconsistency exception after `finish`.
  void update(std::span<const std::byte> bytes);

  /// Ends the digest and returns it: 16 bytes for MD5, 20 for SHA-1 and HMAC, 32 for SHA-256. Raises the
  /// internal-inconsistency exception if it has ended before.
  NSRef<NSData> finish();

 private:
  class Implementation;
  explicit VXDigest(std::unique_ptr<Implementation> implementation) noexcept;
  Implementation& inProgress() const;

  std::unique_ptr<Implementation> implementation_;
};
