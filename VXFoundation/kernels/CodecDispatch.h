#pragma once

#include <span>

#include <Foundation/kernels/InstructionSets.h>
#include <VXFoundation/kernels/CodecKernels.h>

namespace VXKernels {

/// The sets of this family of processors, in the order of InstructionSets.h.
extern const CodecKernels* const codecKernels[];

/// Returns the sets that this machine can run, slowest first.
inline std::span<const CodecKernels* const> availableKernels() {
  return {codecKernels, NSKernels::availableSets().size()};
}

/// Returns the set in use.
inline const CodecKernels& kernels() { return *codecKernels[NSKernels::setInUse()]; }

}  // namespace VXKernels
