#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// The interface of a fuzz target: takes any bytes, and fails if a promise does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline void fuzzWith(std::string_view input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

/// Returns the size of the file that StoreFileFuzz damages.
std::size_t fuzzedStoreFileSize();

/// Throws an exception that names a broken promise: for a fuzzer it is a finding, a test reports the input.
inline void fuzzRequire(bool holds, const char* promise) {
  if (!holds) throw std::logic_error(std::string("does not hold: ") + promise);
}

/// An input, read from its start; zeros follow its end.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  unsigned byte() {
    if (rest_.empty()) return 0;
    const auto first = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return first;
  }
  /// Reads up to and including the next `separator`, or all the rest, and returns what precedes it.
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

/// Returns a copy that fills its block of memory, so that the sanitizer detects a read beyond its end.
inline std::vector<std::byte> fuzzBytes(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}
