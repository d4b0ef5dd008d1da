#pragma once

#include <arm_neon.h>

#include <cstddef>

namespace VXKernels {
namespace {

/// The number of bytes in a vector.
inline constexpr std::size_t width = 16;

}  // namespace
}  // namespace VXKernels
