#pragma once

#include <openssl/evp.h>

#include <cstddef>

/// One digest algorithm of libcrypto, looked up once per process. Safe on any thread.
class CCDigest {
 public:
  /// Returns MD5 (RFC 1321) and SHA-1 (FIPS 180). Ends the process with a message if libcrypto does not offer
  /// the algorithm.
  ///@{
  static const CCDigest& MD5();
  static const CCDigest& SHA1();
  ///@}

  /// Writes the digest of the concatenated parts to `digest`, which has room for the algorithm's digest
  /// length.
  template <class... Parts>
  void of(unsigned char* digest, const Parts&... parts) const {
    EVP_MD_CTX* const context = begin();
    (require(EVP_DigestUpdate(context, parts.bytes, parts.length)), ...);
    require(EVP_DigestFinal_ex(context, digest, nullptr));
  }

  /// A sequence of bytes to be digested.
  struct Part {
    const void* bytes;   ///< the first byte; null if there is none
    std::size_t length;  ///< in bytes
  };

 private:
  explicit CCDigest(const char* name);

  /// Begins a digest in this thread's context: creating a context costs more than a short digest.
  EVP_MD_CTX* begin() const;
  static void require(int success);

  const EVP_MD* algorithm_;
};
