#include <Foundation/NSBundle.h>
#include <VXFoundation/VXFoundationConstants.h>
#include <benchmark/benchmark.h>

// What a lookup of a localised string costs, which reads the file of its language each time.
namespace {

void localisedLookup(benchmark::State& state, const char* key) {
  const NSRef<NSBundle> bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  const NSRef<NSString> sought = NSString::stringWithUTF8String(key);
  for (auto _ : state) benchmark::DoNotOptimize(bundle->localizedStringForKey(sought, nullptr, nullptr));
}

BENCHMARK_CAPTURE(localisedLookup, found, "Cancel");
BENCHMARK_CAPTURE(localisedLookup, missing, "no such key");

}  // namespace
