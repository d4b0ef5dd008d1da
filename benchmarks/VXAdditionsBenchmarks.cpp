#include <Foundation/NSMutableString.h>
#include <VXFoundation/NSArray+VXAdditions.h>

#include <string>
#include <vector>

#include "Growth.h"

namespace {

NSRef<NSArray> strings(std::size_t first, std::size_t count) {
  const auto array = NSMutableArray::arrayWithCapacity(count);
  for (std::size_t i = first; i < first + count; ++i)
    array->addObject(NSString::stringWithFormat("text number %lu", i));
  return array;
}

/// Removes half of the strings.
void removal(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto array = strings(0, count), unwanted = strings(count / 2, count);
  for (auto _ : state)
    benchmark::DoNotOptimize(VXAdditions::vxfoundation_arrayByRemovingObjectsInArray(*array, unwanted));
  countPerElement(state, count);
}
BENCHMARK(removal)->Apply(thousandToMillion);

void mapping(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto array = strings(0, count);
  const auto same = [](const NSRef<NSObject>& element, std::size_t, bool*) -> NSRefPtr<NSObject> {
    return element;
  };
  for (auto _ : state) benchmark::DoNotOptimize(VXAdditions::vxfoundation_map(*array, same));
  countPerElement(state, count);
}
BENCHMARK(mapping)->Apply(thousandToMillion);

constexpr std::size_t places = 5;

void combinations(benchmark::State& state) {
  const auto arrays = NSMutableArray::array();
  for (std::size_t i = 0; i < places; ++i) arrays->addObject(strings(0, 10));
  std::size_t count = 0;
  for (auto _ : state) count = VXAdditions::vxfoundation_combinationsJoined(arrays)->count();
  countPerElement(state, count);
}
BENCHMARK(combinations)->Unit(benchmark::kMillisecond);

/// The same combinations, with strings of the standard library in nested loops.
void combinationsInPlainLoops(benchmark::State& state) {
  std::vector<std::string> strings;
  for (std::size_t i = 0; i < 10; ++i) strings.push_back("text number " + std::to_string(i));
  std::size_t count = 0;
  for (auto _ : state) {
    std::vector<std::string> results;
    for (const auto& e : strings)
      for (const auto& d : strings)
        for (const auto& c : strings)
          for (const auto& b : strings)
            for (const auto& a : strings) results.push_back(a + b + c + d + e);
    count = results.size();
    benchmark::DoNotOptimize(results.data());
  }
  countPerElement(state, count);
}
BENCHMARK(combinationsInPlainLoops)->Unit(benchmark::kMillisecond);

}  // namespace
