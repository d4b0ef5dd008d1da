#include <Foundation/NSString.h>
#include <benchmark/benchmark.h>

#include <string>

// How the cost of strings grows with their length, for ASCII and for UTF-16.
namespace {

std::string utf8Of(const benchmark::State& state) {
  const char* const piece = state.range(1) ? "eine größere Menge, " : "a larger amount, ";
  std::string utf8;
  while (utf8.size() < static_cast<std::size_t>(state.range(0))) utf8 += piece;
  return utf8;
}

void count(benchmark::State& state, const std::string& utf8) {
  state.SetBytesProcessed(static_cast<std::int64_t>(utf8.size()) * state.iterations());
}

void stringFromUTF8(benchmark::State& state) {
  const std::string utf8 = utf8Of(state);
  for (auto _ : state) benchmark::DoNotOptimize(NSString::stringWithUTF8String(utf8));
  count(state, utf8);
}

void stringToUTF8(benchmark::State& state) {
  const std::string utf8 = utf8Of(state);
  const NSRef<NSString> string = NSString::stringWithUTF8String(utf8);
  for (auto _ : state) benchmark::DoNotOptimize(string->UTF8String());
  count(state, utf8);
}

void stringHashAndEquality(benchmark::State& state) {
  const std::string utf8 = utf8Of(state);
  const NSRef<NSString> string = NSString::stringWithUTF8String(utf8);
  const NSRef<NSString> other = NSString::stringWithUTF8String(utf8);
  for (auto _ : state) {
    benchmark::DoNotOptimize(string->hash());
    benchmark::DoNotOptimize(string->isEqual(other));
  }
  count(state, utf8);
}

/// Lengths in bytes, each as ASCII (0) and as UTF-16 (1).
void lengths(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgsProduct({{32, 1 << 10, 32 << 10, 1 << 20}, {0, 1}});
}

BENCHMARK(stringFromUTF8)->Apply(lengths);
BENCHMARK(stringToUTF8)->Apply(lengths);
BENCHMARK(stringHashAndEquality)->Apply(lengths);

}  // namespace
