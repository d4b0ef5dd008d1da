#pragma once

#include <atomic>
#include <cstddef>
#include <span>
#include <string_view>

/// The instruction sets for which there are kernels, in the order in which every table of kernels has them:
/// the scalar set, which any machine can run, then the others of the processor's family, slowest first.
namespace NSKernels {

/// Returns the names of those that this machine can run.
std::span<const std::string_view> availableSets();

/// Selects the set of that name, for all threads. Returns false if the machine cannot run it.
bool useSet(std::string_view name);

/// The index of the set in use; negative until the first use.
extern constinit std::atomic<int> chosenSet;
int chooseFastestSet();

/// Returns the index of the set in use: the fastest that the machine can run, until `useSet` selects another.
inline std::size_t setInUse() {
  const int chosen = chosenSet.load(std::memory_order_relaxed);
  return static_cast<std::size_t>(chosen >= 0 ? chosen : chooseFastestSet());
}

}  // namespace NSKernels
