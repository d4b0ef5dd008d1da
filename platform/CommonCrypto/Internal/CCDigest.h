#pragma once

// libcrypto prefers its general interface, whose set-up alone takes longer than a short digest.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/crypto.h>
#include <openssl/md5.h>
#include <openssl/sha.h>

#include <cstddef>
#include <new>

#include <CommonCrypto/CommonDigest.h>

/// The algorithms, as libcrypto's functions for each of them (RFC 1321, FIPS 180). These always return 1,
/// allocate nothing, read no configuration, and work until the process has ended.
///@{
struct CCMD5 {
  using State = MD5_CTX;
  static constexpr auto begin = MD5_Init;
  static constexpr auto update = MD5_Update;
  static constexpr auto finish = MD5_Final;
};
struct CCSHA1 {
  using State = SHA_CTX;
  static constexpr auto begin = SHA1_Init;
  static constexpr auto update = SHA1_Update;
  static constexpr auto finish = SHA1_Final;
};
struct CCSHA256 {
  using State = SHA256_CTX;
  static constexpr auto begin = SHA256_Init;
  static constexpr auto update = SHA256_Update;
  static constexpr auto finish = SHA256_Final;
};
///@}

/// Digests of whole data, and in pieces.
class CCDigest {
 public:
  /// A run of bytes to be digested.
  struct Part {
    const void* bytes;   ///< may be null if `length` is 0
    std::size_t length;  ///< in bytes
  };

  /// Writes the digest of the parts, one after another, to as many bytes as the algorithm produces. Of the
  /// parts nothing stays in memory: libcrypto cleanses what it has copied, and the digest alone is left.
  template <class Algorithm, class... Parts>
  static void of(unsigned char* digest, const Parts&... parts) {
    typename Algorithm::State state;
    Algorithm::begin(&state);
    (Algorithm::update(&state, parts.bytes, parts.length), ...);
    Algorithm::finish(digest, &state);
  }

  /// The steps of a digest in a context of the caller's. They return 1; a digest that was not begun ends the
  /// process with a message.
  ///@{
  template <class Algorithm>
  static int begin(CCDigestContext& context) {
    static_assert(sizeof(typename Algorithm::State) <= sizeof context.state_);
    context.begun_ = true;
    return Algorithm::begin(new (context.state_) typename Algorithm::State);
  }
  template <class Algorithm>
  static int update(CCDigestContext& context, const Part& part) {
    return Algorithm::update(stateOf<Algorithm>(context), part.bytes, part.length);
  }
  template <class Algorithm>
  static int finish(CCDigestContext& context, unsigned char* digest) {
    Algorithm::finish(digest, stateOf<Algorithm>(context));
    return discard(context), 1;
  }
  ///@}

  /// Cleanses a context.
  static void discard(CCDigestContext& context);

 private:
  template <class Algorithm>
  static auto* stateOf(CCDigestContext& context) {
    if (!context.begun_) failAsNotBegun();
    return std::launder(reinterpret_cast<typename Algorithm::State*>(context.state_));
  }
  [[noreturn]] static void failAsNotBegun();
};
