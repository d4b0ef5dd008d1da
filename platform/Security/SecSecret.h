#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// Bytes that nobody else may read: cleansed when they are let go of, moved rather than copied.
/// Not thread-safe; each belongs to one owner at a time.
class SecSecret {
 public:
  SecSecret() = default;
  explicit SecSecret(std::span<const std::byte> bytes) : bytes_(bytes.begin(), bytes.end()) {}
  SecSecret(SecSecret&& other) noexcept : bytes_(std::move(other.bytes_)) {}
  SecSecret& operator=(SecSecret&& other) noexcept;
  SecSecret(const SecSecret&) = delete;
  SecSecret& operator=(const SecSecret&) = delete;
  ~SecSecret() { cleanse(); }

  std::span<const std::byte> bytes() const { return bytes_; }
  SecSecret clone() const { return SecSecret(bytes()); }

 private:
  void cleanse() noexcept;

  std::vector<std::byte> bytes_;
};
