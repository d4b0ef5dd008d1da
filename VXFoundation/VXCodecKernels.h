#pragma once

#include <Foundation/NSExport.h>

#include <string>
#include <vector>

/// @file
/// The codecs have several implementations of their inner loops, one for each instruction set; all give
/// the same results. The library takes the fastest that the machine can run. These functions tell which,
/// and change it, for tests and for finding faults; there is no other reason to call them.

/// The names of the sets that this machine can run, slowest first: "scalar", and "avx2", "avx512vbmi" or
/// "neon" where the machine has them.
NS_EXPORT std::vector<std::string> VXCodecKernelsAvailable();

/// The name of the set in use.
NS_EXPORT std::string VXCodecKernelsInUse();

/// Makes the set of that name the one in use, on all threads; false, and no change, when the machine
/// cannot run it.
NS_EXPORT bool VXCodecKernelsUse(const std::string& name);
