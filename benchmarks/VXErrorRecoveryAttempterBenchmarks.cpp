#include <VXFoundation/VXErrorRecoveryAttempter.h>
#include <benchmark/benchmark.h>

#include <cstdlib>

// The cost of offering recovery options, the localised title of the cancelling one among them.
namespace {

void offeringOptions(benchmark::State& state, const char* language) {
  setenv("LC_ALL", language, 1);
  const NSRefPtr<VXErrorRecoveryBlock> replace([](const NSRefPtr<NSError>&) { return true; });
  const NSRef<NSString> title = NSString::stringWithUTF8String("Replace");
  for (auto _ : state) {
    const NSRef<VXErrorRecoveryAttempter> attempter = VXErrorRecoveryAttempter::alloc();
    attempter->addRecoveryOptionWithLocalizedTitle(title, replace);
    attempter->addCancelRecoveryOption();
    benchmark::DoNotOptimize(attempter->recoveryOptions());
  }
}

BENCHMARK_CAPTURE(offeringOptions, untranslated, "C");
BENCHMARK_CAPTURE(offeringOptions, English, "en_GB.UTF-8");
BENCHMARK_CAPTURE(offeringOptions, German, "de_DE.UTF-8");

}  // namespace
