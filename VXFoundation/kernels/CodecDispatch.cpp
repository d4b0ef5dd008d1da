#include <VXFoundation/kernels/CodecDispatch.h>

#include <algorithm>
#include <atomic>
#include <vector>

namespace VXKernels {
namespace {

#if defined(__x86_64__)
bool hasAVX2() { return __builtin_cpu_supports("avx2"); }

bool hasAVX512VBMI() {
  return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
         __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2") &&
         __builtin_cpu_supports("bmi2");
}
#endif

std::vector<const CodecKernels*> detectKernels() {
  std::vector<const CodecKernels*> found{&scalarKernels};
#if defined(__x86_64__)
  if (hasAVX2()) found.push_back(&avx2Kernels);
  if (hasAVX512VBMI()) found.push_back(&avx512vbmiKernels);
#elif defined(__aarch64__)
  found.push_back(&neonKernels);  // every 64-bit ARM processor has it
#endif
  return found;
}

// Null until the first use: a host's static initialisers may already use a codec.
constinit std::atomic<const CodecKernels*> chosen{nullptr};

}  // namespace

std::span<const CodecKernels* const> availableKernels() {
  static const std::vector<const CodecKernels*> available = detectKernels();
  return available;
}

const CodecKernels& kernels() {
  const CodecKernels* set = chosen.load(std::memory_order_relaxed);
  if (set) return *set;
  chosen.compare_exchange_strong(set, availableKernels().back(), std::memory_order_relaxed);
  return *chosen.load(std::memory_order_relaxed);
}

bool useKernels(std::string_view name) {
  const auto available = availableKernels();
  const auto found = std::find_if(available.begin(), available.end(),
                                  [&](const CodecKernels* set) { return set->name == name; });
  if (found == available.end()) return false;
  chosen.store(*found, std::memory_order_relaxed);
  return true;
}

}  // namespace VXKernels
