#include <Security/SecSecret.h>

#include <openssl/crypto.h>

#include <utility>

SecSecret& SecSecret::operator=(SecSecret&& other) noexcept {
  if (this == &other) return *this;
  cleanse();
  bytes_ = std::move(other.bytes_);
  other.bytes_.clear();
  return *this;
}

void SecSecret::cleanse() noexcept {
  if (!bytes_.empty()) OPENSSL_cleanse(bytes_.data(), bytes_.size());
}
