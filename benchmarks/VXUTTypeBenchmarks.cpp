#include <CoreServices/UTType.h>
#include <CoreServices/UTTypeTags.h>
#include <VXFoundation/VXUTType.h>
#include <benchmark/benchmark.h>
#include <gio/gio.h>

#include <fstream>
#include <string>
#include <vector>

/// A query for conformance, compared with GIO's for types of its own database, and what first use costs.

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

// The first two run before any other query: the first reads the declared types, the second the MIME database.
void firstUse(benchmark::State& state, const char* type, const char* other) {
  const NSRef<NSString> a = text(type), b = text(other);
  for (auto _ : state) benchmark::DoNotOptimize(VXUTTypeConformsTo(a, b));
}

/// Queries of each of the types for each of them.
void allPairs(benchmark::State& state, const std::vector<NSRef<NSString>>& types) {
  if (types.size() < 50) state.SkipWithError("there are too few types");
  auto type = types.begin(), other = types.begin();
  for (auto _ : state) {
    benchmark::DoNotOptimize(VXUTTypeConformsTo(*type, *other));
    if (++other != types.end()) continue;
    other = types.begin();
    if (++type == types.end()) type = types.begin();
  }
}

/// The types of the system's MIME database, declared or dynamic.
std::vector<NSRef<NSString>> databaseTypes(bool dynamic) {
  std::vector<NSRef<NSString>> types;
  std::ifstream names("/usr/share/mime/types");
  for (std::string name; std::getline(names, name);) {
    const NSRef<NSString> type = UTTypeIdentifierForTag(UTTagClassMIMEType, text(name.c_str()));
    if (UTTypeIsDynamic(type) == dynamic) types.push_back(type);
  }
  return types;
}

void pairsDeclared(benchmark::State& state) { allPairs(state, databaseTypes(false)); }
void pairsOfDatabase(benchmark::State& state) { allPairs(state, databaseTypes(true)); }

BENCHMARK_CAPTURE(firstUse, declared, "public.python-script", "public.data")->Iterations(1);
BENCHMARK_CAPTURE(firstUse, database, "dyn.aqe8xc", "public.data")->Iterations(1);
BENCHMARK(pairsDeclared);
BENCHMARK(pairsOfDatabase);
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
