#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <Security/SecEntry.h>
#include <Security/SecFailure.h>

using SecView = std::span<const std::byte>;
using SecBytes = std::vector<std::byte>;
using SecTag = std::array<std::byte, 16>;
using SecDigest = std::array<std::byte, 32>;

inline SecView secBytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

inline std::string secHexadecimal(SecView bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const std::byte byte : bytes) {
    text += digits[std::to_integer<unsigned>(byte >> 4)];
    text += digits[std::to_integer<unsigned>(byte & std::byte{15})];
  }
  return text;
}

/// Writes values one after another, numbers with the most significant byte first.
template <class Bytes>
class SecWriter {
 public:
  template <class Integer>
  SecWriter& number(Integer value) {
    const auto bits = static_cast<std::make_unsigned_t<Integer>>(value);
    for (std::size_t shift = sizeof bits * 8; shift > 0; shift -= 8)
      bytes_.push_back(static_cast<std::byte>(bits >> (shift - 8)));
    return *this;
  }
  /// Not inlined: otherwise g++ 12 warns of an overflow that cannot happen.
  [[gnu::noinline]] SecWriter& raw(SecView bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  SecWriter& raw(std::string_view text) { return raw(secBytesOf(text)); }
  SecWriter& presence(bool there) { return number(static_cast<std::uint8_t>(there)); }
  SecWriter& text(const std::optional<SecText>& text) {
    presence(text.has_value());
    if (!text) return *this;
    number(static_cast<std::uint32_t>(text->size()));
    for (const char16_t unit : *text) number(static_cast<std::uint16_t>(unit));
    return *this;
  }
  SecWriter& reserve(std::size_t size) {
    bytes_.reserve(size);
    return *this;
  }
  SecWriter& padTo(std::size_t step) {
    bytes_.resize((bytes_.size() + step - 1) / step * step);
    return *this;
  }
  SecView bytes() const { return bytes_; }
  Bytes take() { return std::move(bytes_); }

 private:
  Bytes bytes_;
};

using SecByteWriter = SecWriter<SecBytes>;
using SecSecretWriter = SecWriter<std::vector<std::byte, SecSecretAllocator<std::byte>>>;

/// Reads what SecWriter wrote; fails with errSecDecode if the bytes end too soon.
class SecByteReader {
 public:
  explicit SecByteReader(SecView bytes) : bytes_(bytes) {}

  template <class Integer>
  Integer number() {
    std::make_unsigned_t<Integer> bits = 0;
    for (const std::byte byte : raw(sizeof bits))
      bits = static_cast<decltype(bits)>((std::uint64_t{bits} << 8) | std::to_integer<std::uint64_t>(byte));
    return static_cast<Integer>(bits);
  }
  SecView raw(std::size_t size) {
    secRequire(size <= bytes_.size(), errSecDecode);
    const SecView taken = bytes_.first(size);
    bytes_ = bytes_.subspan(size);
    return taken;
  }
  template <std::size_t size>
  std::array<std::byte, size> array() {
    std::array<std::byte, size> taken;
    const SecView bytes = raw(size);
    for (std::size_t index = 0; index < size; ++index) taken[index] = bytes[index];
    return taken;
  }
  SecView rest() const { return bytes_; }

 private:
  SecView bytes_;
};
