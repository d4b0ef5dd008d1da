#include <VXFoundation/VXUTType.h>
#include <benchmark/benchmark.h>
#include <gio/gio.h>

/// A query for conformance, compared with GIO's for types of its own database.

namespace {

NSRef<NSString> text(const char* utf8) { return NSString::stringWithUTF8String(utf8); }

void ours(benchmark::State& state, const char* type, const char* other, bool expected) {
  const NSRef<NSString> a = text(type), b = text(other);
  if (VXUTTypeConformsTo(a, b) != expected) state.SkipWithError("not the expected result");
  for (auto _ : state) benchmark::DoNotOptimize(VXUTTypeConformsTo(a, b));
}

void gio(benchmark::State& state, const char* type, const char* other, bool expected) {
  if ((g_content_type_is_a(type, other) != FALSE) != expected) state.SkipWithError("not the expected result");
  for (auto _ : state) benchmark::DoNotOptimize(g_content_type_is_a(type, other));
}

BENCHMARK_CAPTURE(ours, equal, "public.python-script", "public.python-script", true);
BENCHMARK_CAPTURE(ours, 1 step, "public.python-script", "public.shell-script", true);
BENCHMARK_CAPTURE(ours, 2 steps, "public.python-script", "public.script", true);
BENCHMARK_CAPTURE(ours, 6 steps, "public.python-script", "public.data", true);
BENCHMARK_CAPTURE(ours, no, "public.python-script", "public.image", false);
// From a=1:b=2:c=3:d=4 to the same pairs in reverse order, and to those with one value changed.
BENCHMARK_CAPTURE(ours, dynamic yes, "dyn.aqe8xcsxchy3dy237gq7gktmy", "dyn.aqu8xksxdhy3xy2v7gk7gctmv", true);
BENCHMARK_CAPTURE(ours, dynamic no, "dyn.aqe8xcsxchy3dy237gq7gktmy", "dyn.aqu8xnsxdhy3xy2v7gk7gctmv", false);
BENCHMARK_CAPTURE(gio, equal, "text/x-objc++src", "text/x-objc++src", true);
BENCHMARK_CAPTURE(gio, 1 step, "text/x-objc++src", "text/x-c++src", true);
BENCHMARK_CAPTURE(gio, 2 steps, "text/x-objc++src", "text/x-csrc", true);
BENCHMARK_CAPTURE(gio, 3 steps, "text/x-objc++src", "text/plain", true);
BENCHMARK_CAPTURE(gio, no, "text/x-objc++src", "image/png", false);

}  // namespace
