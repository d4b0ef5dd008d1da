#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include <Security/SecMemory.h>

/// Bytes that nobody else may read: overwritten when they are freed, kept out of core dumps and locked in
/// memory where the system allows it, moved rather than copied.
/// Not thread-safe; each belongs to one owner at a time.
class SecSecret {
 public:
  /// No bytes, or a copy of those given; throws std::bad_alloc.
  ///@{
  SecSecret() = default;
  explicit SecSecret(std::span<const std::byte> bytes) : bytes_(bytes.begin(), bytes.end()) {}
  ///@}
  /// `size` zero bytes, to be overwritten.
  explicit SecSecret(std::size_t size) : bytes_(size) {}
  /// Takes over the other's bytes and leaves it empty.
  ///@{
  SecSecret(SecSecret&& other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}
  SecSecret& operator=(SecSecret&& other) noexcept {
    bytes_ = std::exchange(other.bytes_, {});
    return *this;
  }
  ///@}
  SecSecret(const SecSecret&) = delete;
  SecSecret& operator=(const SecSecret&) = delete;

  /// The bytes in place, valid until the secret is assigned to, moved from or destroyed.
  ///@{
  std::span<const std::byte> bytes() const { return bytes_; }
  std::span<std::byte> writableBytes() { return bytes_; }
  ///@}
  /// Returns a copy; copying is never implicit.
  SecSecret clone() const { return SecSecret(bytes()); }

 private:
  std::vector<std::byte, SecSecretAllocator<std::byte>> bytes_;
};
