#include <VXFoundation/VXDigest.h>

#include <CommonCrypto/CommonDigest.h>
#include <CommonCrypto/CommonHMAC.h>
#include <Foundation/NSException.h>

class NS_NO_EXPORT VXDigest::Implementation {
 public:
  Implementation() = default;
  Implementation(const Implementation&) = delete;
  Implementation& operator=(const Implementation&) = delete;
  virtual ~Implementation() = default;

  virtual void update(std::span<const std::byte> bytes) = 0;
  virtual NSRef<NSData> finish() = 0;

  /// One kind of digest, by the platform's functions for it.
  template <class Context, std::size_t length, auto updateContext, auto finishContext>
  class Of;
};

template <class Context, std::size_t length, auto updateContext, auto finishContext>
class VXDigest::Implementation::Of final : public Implementation {
 public:
  explicit Of(auto&& begin) { begin(&context_); }

  void update(std::span<const std::byte> bytes) override {
    updateContext(&context_, bytes.data(), bytes.size());
  }
  NSRef<NSData> finish() override {
    unsigned char digest[length];
    finishContext(digest, &context_);
    return NSData::dataWithBytes(digest, length);
  }

 private:
  Context context_;
};

VXDigest VXDigest::MD5() {
  using MD5 = Implementation::Of<CC_MD5_CTX, CC_MD5_DIGEST_LENGTH, CC_MD5_Update, CC_MD5_Final>;
  return VXDigest(std::make_unique<MD5>(CC_MD5_Init));
}

VXDigest VXDigest::SHA1() {
  using SHA1 = Implementation::Of<CC_SHA1_CTX, CC_SHA1_DIGEST_LENGTH, CC_SHA1_Update, CC_SHA1_Final>;
  return VXDigest(std::make_unique<SHA1>(CC_SHA1_Init));
}

VXDigest VXDigest::SHA256() {
  using SHA256 =
      Implementation::Of<CC_SHA256_CTX, CC_SHA256_DIGEST_LENGTH, CC_SHA256_Update, CC_SHA256_Final>;
  return VXDigest(std::make_unique<SHA256>(CC_SHA256_Init));
}

VXDigest VXDigest::HMAC_SHA1_WithSecretKey(const NSData& secretKey) {
  constexpr auto finish = [](unsigned char* mac, CCHmacContext* context) { CCHmacFinal(context, mac); };
  using HMAC = Implementation::Of<CCHmacContext, CC_SHA1_DIGEST_LENGTH, CCHmacUpdate, finish>;
  return VXDigest(std::make_unique<HMAC>([&](CCHmacContext* context) {
    CCHmacInit(context, kCCHmacAlgSHA1, secretKey.bytes().data(), secretKey.length());
  }));
}

VXDigest::VXDigest(std::unique_ptr<Implementation> implementation) noexcept
    : implementation_(std::move(implementation)) {}

VXDigest::VXDigest(VXDigest&& other) noexcept = default;
VXDigest& VXDigest::operator=(VXDigest&& other) noexcept = default;
VXDigest::~VXDigest() = default;

VXDigest::Implementation& VXDigest::inProgress() const {
  if (!implementation_) NSException::raise(NSInternalInconsistencyException, "the digest has ended");
  return *implementation_;
}

void VXDigest::update(std::span<const std::byte> bytes) { inProgress().update(bytes); }

NSRef<NSData> VXDigest::finish() {
  const NSRef<NSData> digest = inProgress().finish();
  implementation_.reset();
  return digest;
}
