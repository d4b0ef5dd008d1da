#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

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

/// Returns the keyed hash of a sequence of integers. Sequences of different lengths are different.
template <class Unit>
std::size_t NSKeyedHashOf(std::span<const Unit> units) noexcept {
  constexpr std::size_t unitsInWord = sizeof(std::uint64_t) / sizeof(Unit);
  NSKeyedHash keyed;
  const std::size_t length = units.size();
  for (; units.size() >= unitsInWord; units = units.subspan(unitsInWord)) {
    std::uint64_t word = 0;
    __builtin_memcpy(&word, units.data(), sizeof word);
    keyed.add(word);
  }
  std::uint64_t rest = 0;
  __builtin_memcpy(&rest, units.data(), units.size_bytes());
  keyed.add(rest);
  keyed.add(length);
  return keyed.finish();
}
