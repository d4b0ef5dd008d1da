#pragma once

#include <VXFoundation/kernels/Radix.h>

/// Returns whether the digits that the padding leaves in a group are those of a whole number of bytes.
constexpr bool VXLeavesWholeBytes(std::size_t padding, const VXKernels::Radix& radix) {
  if (padding >= radix.groupDigits) return false;
  const std::size_t digits = radix.groupDigits - padding, bytes = digits * radix.bits / 8;
  return bytes > 0 && (bytes * 8 + radix.bits - 1) / radix.bits == digits;
}

/// Returns one bit for each length of padding with which encoded text may end.
constexpr unsigned VXValidPaddings(const VXKernels::Radix& radix) {
  unsigned valid = 0;
  for (unsigned padding = 0; padding < radix.groupDigits; ++padding)
    if (VXLeavesWholeBytes(padding, radix)) valid |= 1u << padding;
  return valid;
}
