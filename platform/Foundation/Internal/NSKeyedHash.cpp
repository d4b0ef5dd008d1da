#include <Foundation/Internal/NSKeyedHash.h>

#include <array>
#include <cstring>
#include <random>

namespace {

using Word = std::uint64_t;
__extension__ using Product = unsigned __int128;

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

Word wordAt(const std::byte* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

/// Condenses blocks of bytes to a few words. Its lanes do not depend on one another, so that the processor
/// works on all of them at once.
class Lanes {
 public:
  static constexpr std::size_t count = 4, bytesOfLane = 2 * sizeof(Word), blockSize = count * bytesOfLane;

  void take(const std::byte* block) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
      const std::byte* const bytes = block + i * bytesOfLane;
      words_[i] =
          product(words_[i] ^ wordAt(bytes) ^ key_[2 * i], wordAt(bytes + sizeof(Word)) ^ key_[2 * i + 1]);
    }
  }
  const std::array<Word, count>& words() const noexcept { return words_; }

 private:
  using Key = std::array<Word, 2 * count>;

  static const Key& keyOfProcess() noexcept {
    static const Key key = [] {
      Key words{};
      for (std::size_t i = 0; i < words.size(); ++i) words[i] = NSKeyedHashOf(i);
      return words;
    }();
    return key;
  }

  /// Folds the two halves of the product: each bit of the result depends on all those of both factors.
  static Word product(Word a, Word b) noexcept {
    const auto both = static_cast<Product>(a) * b;
    return static_cast<Word>(both) ^ static_cast<Word>(both >> 64);
  }

  const Key& key_ = keyOfProcess();
  std::array<Word, count> words_{};
};

}  // namespace

NSKeyedHash::NSKeyedHash() noexcept {
  static const Key key = makeKey();
  v0_ = key.k0 ^ 0x736F6D6570736575U;
  v1_ = key.k1 ^ 0x646F72616E646F6DU;
  v2_ = key.k0 ^ 0x6C7967656E657261U;
  v3_ = key.k1 ^ 0x7465646279746573U;
}

std::size_t NSKeyedHashOf(std::span<const std::byte> bytes) noexcept {
  NSKeyedHash keyed;
  const std::size_t length = bytes.size();
  if (length >= Lanes::blockSize) {
    Lanes lanes;
    for (; bytes.size() >= Lanes::blockSize; bytes = bytes.subspan(Lanes::blockSize))
      lanes.take(bytes.data());
    for (const Word word : lanes.words()) keyed.add(word);
  }
  for (; bytes.size() >= sizeof(Word); bytes = bytes.subspan(sizeof(Word))) keyed.add(wordAt(bytes.data()));
  Word rest = 0;
  if (!bytes.empty()) std::memcpy(&rest, bytes.data(), bytes.size());
  keyed.add(rest);
  keyed.add(length);
  return keyed.finish();
}
