#pragma once

#include <Foundation/NSExport.h>

#include <string>
#include <vector>

/// @file
/// The codecs have several implementations of their inner loops, one for each instruction set; all return
/// the same results. The library uses the fastest that the machine can run. These functions report and change
/// that choice, for tests and for finding faults; there is no other reason to call them.

/// Returns the names of the sets that this machine can run, slowest first: "scalar", then any of "avx2",
/// "avx512vbmi" and "neon" that the machine supports.
NS_EXPORT std::vector<std::string> VXCodecKernelsAvailable();

/// Returns the name of the set in use.
NS_EXPORT std::string VXCodecKernelsInUse();

/// Selects the set of that name, for all threads. Returns false, and changes nothing, if the machine cannot
/// run it.
NS_EXPORT bool VXCodecKernelsUse(const std::string& name);
