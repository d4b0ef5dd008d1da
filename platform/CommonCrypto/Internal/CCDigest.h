#pragma once

#include <openssl/evp.h>

#include <cstddef>

#include <CommonCrypto/CommonDigest.h>

/// One digest algorithm of libcrypto. Thread-safe. Once a digest has been computed, others may be until the
/// process has ended, in exit handlers and static destructors, too.
class CCDigest {
 public:
  /// RFC 1321 and FIPS 180. If libcrypto does not offer one, the process ends with a message.
  ///@{
  static const CCDigest& MD5();
  static const CCDigest& SHA1();
  static const CCDigest& SHA256();
  ///@}

  /// A run of bytes to be digested.
  struct Part {
    const void* bytes;   ///< may be null if `length` is 0
    std::size_t length;  ///< in bytes
  };

  /// Writes the digest of the parts, one after another, to as many bytes as the algorithm produces.
  template <class... Parts>
  void of(unsigned char* digest, const Parts&... parts) const {
    EVP_MD_CTX* const context = borrow();
    begin(context);
    (update(context, parts), ...);
    finish(context, digest);
    giveBack(context);
  }

  /// The steps of a digest in a context of the caller's. They return 1; a digest that was not begun ends the
  /// process with a message.
  ///@{
  int begin(CCDigestContext& context) const;
  static int update(CCDigestContext& context, const Part& part);
  static int finish(CCDigestContext& context, unsigned char* digest);
  ///@}

  /// Cleanses and frees the state of a context, which may have none.
  static void discard(CCDigestContext& context);

 private:
  struct Algorithms;
  static const Algorithms& algorithms();

  explicit CCDigest(const char* name);

  /// Borrows this thread's context, or a new one once the thread's destructors have run.
  ///@{
  static EVP_MD_CTX* borrow();
  static void giveBack(EVP_MD_CTX* context);
  ///@}

  static EVP_MD_CTX* stateOf(const CCDigestContext& context);

  void begin(EVP_MD_CTX* context) const;
  static void update(EVP_MD_CTX* context, const Part& part);
  static void finish(EVP_MD_CTX* context, unsigned char* digest);

  const EVP_MD* algorithm_;
};
