#pragma once

#include <array>
#include <cstddef>
#include <span>

/// Fills `bytes` with random bytes from the system. Thread-safe. Throws SecFailure with errSecNotAvailable if
/// the system has none.
void secFillRandom(std::span<std::byte> bytes);

template <std::size_t size>
std::array<std::byte, size> secRandomBytes() {
  std::array<std::byte, size> bytes;
  secFillRandom(bytes);
  return bytes;
}
