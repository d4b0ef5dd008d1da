#include <Foundation/NSBundle.h>
#include <VXFoundation/VXFoundationConstants.h>
#include <benchmark/benchmark.h>

// The cost of looking up a localised string.
namespace {

void localisedLookup(benchmark::State& state, const char* key) {
  const NSRef<NSBundle> bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  const NSRef<NSString> sought = NSString::stringWithUTF8String(key);
  for (auto _ : state) benchmark::DoNotOptimize(bundle->localizedStringForKey(sought, nullptr, nullptr));
}

BENCHMARK_CAPTURE(localisedLookup, found, "Cancel");
BENCHMARK_CAPTURE(localisedLookup, missing, "no such key");

}  // namespace
