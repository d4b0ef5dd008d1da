#pragma once

namespace NSKernels {

/// For each choice of eight bits, which of sixteen bytes a look-up moves to the front of a vector.
struct Orders {
  struct alignas(16) {
    unsigned char at[16];
  } of[256];
};

/// Returns the orders that keep the bytes for which `isKept(bits, byte)`.
template <class IsKept>
constexpr Orders ordersFor(IsKept isKept) {
  Orders orders{};
  for (unsigned bits = 0; bits < 256; ++bits)
    for (unsigned byte = 0, place = 0; byte < 16; ++byte)
      if (isKept(bits, byte)) orders.of[bits].at[place++] = static_cast<unsigned char>(byte);
  return orders;
}

/// Code units, one for each bit.
inline constexpr Orders unitOrders =
    ordersFor([](unsigned bits, unsigned byte) { return bits >> byte / 2 & 1; });

/// The bytes of code units in lanes of two, of which the last always counts and the first one if its bit is
/// set.
inline constexpr Orders shortOrders =
    ordersFor([](unsigned bits, unsigned byte) { return byte % 2 == 1 || bits >> byte / 2 & 1; });

/// The bytes of code units in lanes of four, of which the last always counts, the one before it if the bit
/// among the lower four is set, and the one before that if the bit among the upper four is set, too.
inline constexpr Orders longOrders = ordersFor([](unsigned bits, unsigned byte) {
  const unsigned lane = byte / 4;
  return byte % 4 == 3 || (byte % 4 == 2 && bits >> lane & 1) || (byte % 4 == 1 && bits >> lane >> 4 & 1);
});

}  // namespace NSKernels
