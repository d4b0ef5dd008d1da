#include <VXFoundation/VXCodecKernels.h>

#include <Foundation/kernels/InstructionSets.h>

std::vector<std::string> VXCodecKernelsAvailable() {
  const auto sets = NSKernels::availableSets();
  return {sets.begin(), sets.end()};
}

std::string VXCodecKernelsInUse() { return std::string(NSKernels::availableSets()[NSKernels::setInUse()]); }

bool VXCodecKernelsUse(const std::string& name) { return NSKernels::useSet(name); }
