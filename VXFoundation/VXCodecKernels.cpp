#include <VXFoundation/VXCodecKernels.h>

#include <VXFoundation/kernels/CodecDispatch.h>

std::vector<std::string> VXCodecKernelsAvailable() {
  std::vector<std::string> names;
  for (const auto* set : VXKernels::availableKernels()) names.emplace_back(set->name);
  return names;
}

std::string VXCodecKernelsInUse() { return VXKernels::kernels().name; }

bool VXCodecKernelsUse(const std::string& name) { return VXKernels::useKernels(name); }
