#pragma once

#include <span>
#include <string_view>

#include <VXFoundation/kernels/CodecKernels.h>

namespace VXKernels {

/// Returns the sets that this machine can run, slowest first; the scalar one is always among them.
std::span<const CodecKernels* const> availableKernels();

/// Returns the set in use: the fastest that the machine can run, until `useKernels` selects another.
const CodecKernels& kernels();

/// Selects the set of that name, for all threads. Returns false if the machine cannot run it.
bool useKernels(std::string_view name);

}  // namespace VXKernels
