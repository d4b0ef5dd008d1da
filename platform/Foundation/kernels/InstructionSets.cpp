#include <Foundation/kernels/InstructionSets.h>

#include <algorithm>

namespace NSKernels {
namespace {

#if defined(__x86_64__)
constexpr std::string_view names[] = {"scalar", "avx2", "avx512vbmi"};

bool hasAVX512VBMI() {
  return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
         __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2") &&
         __builtin_cpu_supports("bmi2");
}

std::size_t countAvailableSets() {
  if (!__builtin_cpu_supports("avx2")) return 1;
  return hasAVX512VBMI() ? 3 : 2;
}
#elif defined(__aarch64__)
constexpr std::string_view names[] = {"scalar", "neon"};

std::size_t countAvailableSets() { return 2; }  // every 64-bit ARM processor has it
#else
constexpr std::string_view names[] = {"scalar"};

std::size_t countAvailableSets() { return 1; }
#endif

}  // namespace

// Negative until the first use: a host's static initialisers may already use a kernel.
constinit std::atomic<int> chosenSet{-1};

std::span<const std::string_view> availableSets() {
  static const std::size_t count = countAvailableSets();
  return std::span(names).first(count);
}

int chooseFastestSet() {
  int chosen = -1;
  chosenSet.compare_exchange_strong(chosen, static_cast<int>(availableSets().size()) - 1,
                                    std::memory_order_relaxed);
  return chosenSet.load(std::memory_order_relaxed);
}

bool useSet(std::string_view name) {
  const auto available = availableSets();
  const auto found = std::find(available.begin(), available.end(), name);
  if (found == available.end()) return false;
  chosenSet.store(static_cast<int>(found - available.begin()), std::memory_order_relaxed);
  return true;
}

}  // namespace NSKernels
