#include <Foundation/Internal/NSKeyedHash.h>

#include <random>

namespace {

struct Key {
  std::uint64_t k0, k1;
};

std::uint64_t randomWord(std::random_device& random) { return std::uint64_t{random()} << 32 | random(); }

/// Without a source of random numbers, only where the system has put the library.
Key makeKey() noexcept {
  try {
    std::random_device random;
    return {randomWord(random), randomWord(random)};
  } catch (const std::exception&) {
    static const int place = 0;
    return {reinterpret_cast<std::uintptr_t>(&place), reinterpret_cast<std::uintptr_t>(&makeKey)};
  }
}

}  // namespace

NSKeyedHash::NSKeyedHash() noexcept {
  static const Key key = makeKey();
  v0_ = key.k0 ^ 0x736F6D6570736575U;
  v1_ = key.k1 ^ 0x646F72616E646F6DU;
  v2_ = key.k0 ^ 0x6C7967656E657261U;
  v3_ = key.k1 ^ 0x7465646279746573U;
}
