#include <CommonCrypto/CommonHMAC.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <CommonCrypto/Internal/CCDigest.h>

namespace {

/// The key, padded to a block and combined with a constant (RFC 2104, section 2); a longer one is digested
/// first. Cleansed at the end.
class KeyBlock {
 public:
  explicit KeyBlock(const CCDigest::Part& key) {
    bytes_.fill(0);
    if (key.length > bytes_.size())
      replaceByDigestOf(key);
    else if (key.length > 0)
      std::memcpy(bytes_.data(), key.bytes, key.length);
    flip(innerMask);
  }
  KeyBlock(const KeyBlock&) = delete;
  KeyBlock& operator=(const KeyBlock&) = delete;
  ~KeyBlock() { OPENSSL_cleanse(bytes_.data(), bytes_.size()); }

  /// Turns the inner key, with which the block begins, into the outer one.
  void becomeOuter() { flip(innerMask ^ outerMask); }
  CCDigest::Part part() const { return {bytes_.data(), bytes_.size()}; }

 private:
  // In a context, which is cleansed: the digest is as good as the key.
  void replaceByDigestOf(const CCDigest::Part& key) {
    CC_SHA1_CTX context;
    CCDigest::begin<CCSHA1>(context);
    CCDigest::update<CCSHA1>(context, key);
    CCDigest::finish<CCSHA1>(context, bytes_.data());
  }

  static constexpr unsigned char innerMask = 0x36, outerMask = 0x5C;

  void flip(unsigned char mask) {
    for (unsigned char& byte : bytes_) byte ^= mask;
  }

  std::array<unsigned char, CC_SHA1_BLOCK_BYTES> bytes_;
};

}  // namespace

// Built on the digest rather than on libcrypto's own HMAC, whose context would either keep the key until this
// thread's next call or have to be created again for every call.
void CCHmac(CCHmacAlgorithm, const void* key, std::size_t keyLength, const void* data, std::size_t dataLength,
            void* mac) {
  auto* const digest = static_cast<unsigned char*>(mac);
  KeyBlock block({key, keyLength});
  CCDigest::of<CCSHA1>(digest, block.part(), CCDigest::Part{data, dataLength});
  block.becomeOuter();
  CCDigest::of<CCSHA1>(digest, block.part(), CCDigest::Part{digest, CC_SHA1_DIGEST_LENGTH});
}

void CCHmacInit(CCHmacContext* context, CCHmacAlgorithm, const void* key, std::size_t keyLength) {
  KeyBlock block({key, keyLength});
  CCDigest::begin<CCSHA1>(context->inner);
  CCDigest::update<CCSHA1>(context->inner, block.part());
  block.becomeOuter();
  CCDigest::begin<CCSHA1>(context->outer);
  CCDigest::update<CCSHA1>(context->outer, block.part());
}

void CCHmacUpdate(CCHmacContext* context, const void* data, std::size_t dataLength) {
  CCDigest::update<CCSHA1>(context->inner, {data, dataLength});
}

void CCHmacFinal(CCHmacContext* context, void* mac) {
  auto* const digest = static_cast<unsigned char*>(mac);
  CCDigest::finish<CCSHA1>(context->inner, digest);
  CCDigest::update<CCSHA1>(context->outer, {digest, CC_SHA1_DIGEST_LENGTH});
  CCDigest::finish<CCSHA1>(context->outer, digest);
}
