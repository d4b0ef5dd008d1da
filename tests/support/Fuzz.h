#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// What a fuzz target is: it takes any bytes, and dies when something that was promised does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline void fuzzWith(std::string_view input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

/// Says which promise is broken, by an exception: a fuzzer takes one for a finding, a test tells the input.
inline void fuzzRequire(bool holds, const char* promise) {
  if (!holds) throw std::logic_error(std::string("does not hold: ") + promise);
}

/// An input, taken apart from its front. What is beyond its end reads as zeros.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  unsigned byte() {
    if (rest_.empty()) return 0;
    const auto first = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return first;
  }
  /// The text up to the next `separator`, which is taken off, too; all the rest where there is none.
  std::string_view upTo(char separator) {
    const std::string_view piece = rest_.substr(0, rest_.find(separator));
    rest_.remove_prefix(std::min(rest_.size(), piece.size() + 1));
    return piece;
  }
  std::string_view rest() const { return rest_; }
  bool atEnd() const { return rest_.empty(); }

 private:
  std::string_view rest_;
};

/// Bytes at the very end of a block of their own: whoever reads beyond them is found out by the sanitizer.
inline std::vector<std::byte> fuzzBytes(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}
