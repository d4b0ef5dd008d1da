#include <Security/SecDefaultStorage.h>
#include <Security/SecMemoryStorage.h>
#include <VXFoundation/VXKeychainItem.h>
#include <benchmark/benchmark.h>

// The cost of an item and of its operations on a store in memory with a number of other entries. That store
// looks at every entry, so its cost grows with their number; the store benchmark measures the one in a file.
namespace {

NSRef<VXGenericKeychainItem> itemOf(const std::string& account) {
  return VXGenericKeychainItem::keychainItemWithUsername(NSString::stringWithUTF8String(account), "password",
                                                         "label", "benchmark");
}

void require(benchmark::State& state, bool done) {
  if (!done) state.SkipWithError("the store refused");
}

/// The default store while it lives, with as many entries as the benchmark's argument says.
class Store {
 public:
  explicit Store(benchmark::State& state) {
    secSetDefaultStorage(std::make_shared<SecMemoryStorage>());
    for (std::int64_t i = 0; i < state.range(0); ++i)
      require(state, itemOf("account " + std::to_string(i))->addItemToKeychain());
    state.SetComplexityN(state.range(0));
  }
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  ~Store() { secSetDefaultStorage(nullptr); }
};

void itemMade(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(itemOf("somebody"));
}

void itemsCompared(benchmark::State& state) {
  const auto item = itemOf("somebody");
  const auto other = itemOf("somebody");
  for (auto _ : state) benchmark::DoNotOptimize(item->isEqual(other));
}

void itemAddedAndDeleted(benchmark::State& state) {
  const Store store(state);
  const auto item = itemOf("somebody");
  for (auto _ : state) require(state, item->addItemToKeychain() && item->deleteItemFromKeychain());
}

void itemFoundAndRefreshed(benchmark::State& state) {
  const Store store(state);
  require(state, itemOf("somebody")->addItemToKeychain());
  for (auto _ : state) {
    const auto item = VXGenericKeychainItem::findKeychainItemForUsername("somebody", "benchmark");
    require(state, item->refreshItemFromKeychainIncludeData(true));
  }
}

void itemUpdated(benchmark::State& state) {
  const Store store(state);
  const auto item = itemOf("somebody");
  require(state, item->addItemToKeychain() && item->refreshItemFromKeychainIncludeData(true));
  for (auto _ : state) require(state, item->updateItemInKeychain());
}

}  // namespace

#define VX_STORE_BENCHMARK(name) \
  BENCHMARK(name)->RangeMultiplier(10)->Range(1, 10000)->Complexity(benchmark::oN)
BENCHMARK(itemMade);
BENCHMARK(itemsCompared);
VX_STORE_BENCHMARK(itemAddedAndDeleted);
VX_STORE_BENCHMARK(itemFoundAndRefreshed);
VX_STORE_BENCHMARK(itemUpdated);
