#pragma once

#include <span>
#include <string_view>

#include <VXFoundation/kernels/CodecKernels.h>

namespace VXKernels {

/// The sets that this machine can run, slowest first; the scalar one is always there.
std::span<const CodecKernels* const> availableKernels();

/// The set in use: the fastest that the machine can run, until `useKernels` said otherwise.
const CodecKernels& kernels();

/// Makes the set of that name the one in use, on all threads; false when the machine cannot run it.
bool useKernels(std::string_view name);

}  // namespace VXKernels
