#include <VXFoundation/VXFoundation.h>
#include <benchmark/benchmark.h>

// What a look-up of a localised text, a failed assertion and a choice of recovery cost.
namespace {

void localisedLookUp(benchmark::State& state) {
  const NSRef<NSBundle> bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  const NSRef<NSString> key = NSString::stringWithUTF8String(state.range(0) ? "Cancel" : "no such key");
  for (auto _ : state) benchmark::DoNotOptimize(bundle->localizedStringForKey(key, nullptr, nullptr));
}

void bundleLookUp(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier));
}

/// The default handler raises; the cost is that of the text and the exception.
void assertionFails(benchmark::State& state) {
  const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  for (auto _ : state) {
    try {
      attempter->addRecoveryOptionWithLocalizedTitle(nullptr, nullptr);
    } catch (const NSException& exception) {
      benchmark::DoNotOptimize(&exception);
    }
  }
}

void subclassResponsibility(benchmark::State& state) {
  const NSRef<NSString> receiver = NSString::string();
  for (auto _ : state) {
    try {
      VXAdditions::subclassShouldImplementSelector(*receiver, "some:");
    } catch (const NSException& exception) {
      benchmark::DoNotOptimize(&exception);
    }
  }
}

void recoveryOptionsOffered(benchmark::State& state) {
  for (auto _ : state) {
    const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
    for (std::int64_t i = 0; i < state.range(0); ++i)
      attempter->addRecoveryOptionWithLocalizedTitle("Replace",
                                                     [](const NSRefPtr<NSError>&) { return true; });
    attempter->addCancelRecoveryOption();
    benchmark::DoNotOptimize(attempter->recoveryOptions());
  }
  state.SetComplexityN(state.range(0));
}

void recoveryAttempted(benchmark::State& state) {
  const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  attempter->addRecoveryOptionWithLocalizedTitle("Replace", [](const NSRefPtr<NSError>&) { return true; });
  for (auto _ : state) benchmark::DoNotOptimize(attempter->attemptRecoveryFromError(nullptr, 0));
}

}  // namespace

BENCHMARK(localisedLookUp)->Arg(0)->Arg(1);
BENCHMARK(bundleLookUp);
BENCHMARK(assertionFails);
BENCHMARK(subclassResponsibility);
BENCHMARK(recoveryOptionsOffered)->RangeMultiplier(8)->Range(1, 512)->Complexity(benchmark::oN);
BENCHMARK(recoveryAttempted);
