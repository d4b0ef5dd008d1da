#pragma once

#include <span>

#include <Foundation/kernels/InstructionSets.h>
#include <Foundation/kernels/UnicodeKernels.h>

namespace NSKernels {

/// The sets of this family of processors, in the order of InstructionSets.h.
extern const UnicodeKernels* const unicodeKernels[];

/// Returns the sets that this machine can run, slowest first.
inline std::span<const UnicodeKernels* const> availableUnicodeKernels() {
  return {unicodeKernels, availableSets().size()};
}

/// Returns the set in use.
inline const UnicodeKernels& unicode() { return *unicodeKernels[setInUse()]; }

}  // namespace NSKernels
