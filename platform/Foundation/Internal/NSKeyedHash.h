#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

/// SipHash-1-3 (Aumasson and Bernstein 2012) of 64-bit words under a key that each process makes for itself:
/// who chooses what is hashed cannot choose what collides. For one thread at a time.
class NSKeyedHash {
 public:
  /// Starts under the key of the process.
  NSKeyedHash() noexcept;

  void add(std::uint64_t word) noexcept {
    v3_ ^= word;
    round();
    v0_ ^= word;
  }

  /// Returns the hash of all words added. Called once.
  std::size_t finish() noexcept {
    v2_ ^= 0xFF;
    for (int i = 0; i < 3; ++i) round();
    return static_cast<std::size_t>(v0_ ^ v1_ ^ v2_ ^ v3_);
  }

 private:
  void round() noexcept {
    v0_ += v1_;
    v2_ += v3_;
    v1_ = std::rotl(v1_, 13) ^ v0_;
    v3_ = std::rotl(v3_, 16) ^ v2_;
    v0_ = std::rotl(v0_, 32) + v3_;
    v2_ += v1_;
    v1_ = std::rotl(v1_, 17) ^ v2_;
    v3_ = std::rotl(v3_, 21) ^ v0_;
    v2_ = std::rotl(v2_, 32);
  }

  std::uint64_t v0_, v1_, v2_, v3_;
};

/// Returns the keyed hash of a hash, for tables whose slots are its lowest bits.
inline std::size_t NSKeyedHashOf(std::size_t hash) noexcept {
  NSKeyedHash keyed;
  keyed.add(hash);
  return keyed.finish();
}

/// Returns the keyed hash of bytes, at the speed of memory if there are many. Thread-safe.
std::size_t NSKeyedHashOf(std::span<const std::byte> bytes) noexcept;
