#pragma once

#include <openssl/evp.h>

#include <cstddef>

/// One digest algorithm of libcrypto, looked up once in the process. Safe on any thread.
class CCDigest {
 public:
  /// RFC 1321 and FIPS 180. Where libcrypto does not offer one, it ends the process with a message.
  ///@{
  static const CCDigest& MD5();
  static const CCDigest& SHA1();
  ///@}

  /// Writes the digest of the parts, one after the other, to as many bytes as the algorithm gives.
  template <class... Parts>
  void of(unsigned char* digest, const Parts&... parts) const {
    EVP_MD_CTX* const context = begin();
    (require(EVP_DigestUpdate(context, parts.bytes, parts.length)), ...);
    require(EVP_DigestFinal_ex(context, digest, nullptr));
  }

  /// A run of bytes to be digested.
  struct Part {
    const void* bytes;   ///< the first one; null for none
    std::size_t length;  ///< in bytes
  };

 private:
  explicit CCDigest(const char* name);

  /// This thread's context: making one costs more than a short digest.
  EVP_MD_CTX* begin() const;
  static void require(int success);

  const EVP_MD* algorithm_;
};
