#include <CommonCrypto/CommonHMAC.h>

#include <openssl/crypto.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <CommonCrypto/CommonDigest.h>
#include <CommonCrypto/Internal/CCDigest.h>

namespace {

using Block = std::array<unsigned char, CC_SHA1_BLOCK_BYTES>;

/// Fills the block with the key; a key longer than the block is digested first (RFC 2104, section 2).
void fillWithKey(Block& block, const CCDigest::Part& key) {
  block.fill(0);
  if (key.length > block.size())
    CCDigest::SHA1().of(block.data(), key);
  else if (key.length > 0)
    std::memcpy(block.data(), key.bytes, key.length);
}

void flip(Block& block, unsigned char mask) {
  for (unsigned char& byte : block) byte ^= mask;
}

}  // namespace

// Built on the digest rather than on libcrypto's own HMAC, whose context would either keep the key until this
// thread's next call or have to be created again for every call.
void CCHmac(CCHmacAlgorithm, const void* key, std::size_t keyLength, const void* data, std::size_t dataLength,
            void* mac) {
  constexpr unsigned char inner = 0x36, outer = 0x5C;
  auto* const digest = static_cast<unsigned char*>(mac);
  Block block;
  fillWithKey(block, {key, keyLength});
  flip(block, inner);
  CCDigest::SHA1().of(digest, CCDigest::Part{block.data(), block.size()}, CCDigest::Part{data, dataLength});
  flip(block, inner ^ outer);
  CCDigest::SHA1().of(digest, CCDigest::Part{block.data(), block.size()},
                      CCDigest::Part{digest, CC_SHA1_DIGEST_LENGTH});
  OPENSSL_cleanse(block.data(), block.size());
}
