#include <VXFoundation/VXFoundation.h>
#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

/// How the cost of the collections' operations grows with their input: the time per element should not.

namespace {

struct Node : NSObject::Subclass<Node> {
  explicit Node(std::size_t ordinal) : number(ordinal) {}
  std::size_t number;
  NSRef<NSMutableArray> children = NSMutableArray::array();
};

struct ValueNode : Node::Subclass<ValueNode> {
  using HashAgreesWithEquality = ValueNode;
  using Layer = Node::Subclass<ValueNode>;
  using Layer::Layer;
  bool isEqual(const NSRefPtr<NSObject>& other) const override {
    const auto* node = NSDynamicCast<ValueNode>(other.get());
    return node && node->number == number;
  }
  std::size_t hash() const override { return number; }
};

using Nodes = std::vector<NSRef<Node>>;

template <class Kind>
Nodes nodes(std::size_t count) {
  Nodes made;
  for (std::size_t i = 0; i < count; ++i) made.push_back(Kind::alloc(i));
  return made;
}

void linkAsChain(const Nodes& all) {
  for (std::size_t i = 1; i < all.size(); ++i) all[i - 1]->children->addObject(all[i]);
}
void linkAsWideTree(const Nodes& all) {
  for (std::size_t i = 1; i < all.size(); ++i) all[(i - 1) / 1000]->children->addObject(all[i]);
}
/// Three edges a node; most of them lead to a node that was met before.
void linkWithSharedSubgraphs(const Nodes& all) {
  for (std::size_t i = 0; i + 1 < all.size(); ++i)
    for (const std::size_t step : {1U, 7U, 4099U}) all[i]->children->addObject(all[(i + step) % all.size()]);
}

void perElement(benchmark::State& state, std::size_t elements) {
  state.counters["per element"] =
      benchmark::Counter(static_cast<double>(elements),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <class Kind>
void unionOfTree(benchmark::State& state, void (*link)(const Nodes&)) {
  const Nodes all = nodes<Kind>(static_cast<std::size_t>(state.range(0)));
  link(all);
  for (auto _ : state) {
    const auto found = VXFoundationUnionOfTree(&Node::children, all[0]);
    if (found->count() != all.size()) state.SkipWithError("not all nodes were found");
  }
  perElement(state, all.size());
  for (const NSRef<Node>& node : all) node->children->removeAllObjects();  // there are cycles
}

constexpr auto unionOfIdentities = unionOfTree<Node>;
constexpr auto unionOfValues = unionOfTree<ValueNode>;

void visitTree(benchmark::State& state, void (*link)(const Nodes&)) {
  const Nodes all = nodes<Node>(static_cast<std::size_t>(state.range(0)));
  link(all);
  std::size_t visited = 0;
  for (auto _ : state)
    VXFoundationVisitTree(&Node::children, all[0], [&](const NSRef<NSObject>&) { ++visited; });
  perElement(state, all.size());
  benchmark::DoNotOptimize(visited);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(unionOfIdentities, chain, linkAsChain)->Apply(sizes);
BENCHMARK_CAPTURE(unionOfIdentities, wide, linkAsWideTree)->Apply(sizes);
BENCHMARK_CAPTURE(unionOfIdentities, shared, linkWithSharedSubgraphs)->Apply(sizes);
BENCHMARK_CAPTURE(unionOfValues, chain, linkAsChain)->Apply(sizes);
BENCHMARK_CAPTURE(unionOfValues, wide, linkAsWideTree)->Apply(sizes);
BENCHMARK_CAPTURE(unionOfValues, shared, linkWithSharedSubgraphs)->Apply(sizes);
BENCHMARK_CAPTURE(visitTree, chain, linkAsChain)->Apply(sizes);
BENCHMARK_CAPTURE(visitTree, wide, linkAsWideTree)->Apply(sizes);

NSRef<NSArray> texts(std::size_t first, std::size_t count) {
  const auto list = NSMutableArray::arrayWithCapacity(count);
  for (std::size_t i = first; i < first + count; ++i)
    list->addObject(NSString::stringWithFormat("text number %lu", i));
  return list;
}

/// Half of the texts are among those that are removed.
void removal(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto list = texts(0, count), unwanted = texts(count / 2, count);
  for (auto _ : state)
    benchmark::DoNotOptimize(VXAdditions::vxfoundation_arrayByRemovingObjectsInArray(*list, unwanted));
  perElement(state, count);
}
BENCHMARK(removal)->Apply(sizes);

void mapping(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto list = texts(0, count);
  const auto same = [](const NSRef<NSObject>& element, std::size_t, bool*) -> NSRefPtr<NSObject> {
    return element;
  };
  for (auto _ : state) benchmark::DoNotOptimize(VXAdditions::vxfoundation_map(*list, same));
  perElement(state, count);
}
BENCHMARK(mapping)->Apply(sizes);

constexpr std::size_t places = 5;

void combinations(benchmark::State& state) {
  const auto lists = NSMutableArray::array();
  for (std::size_t i = 0; i < places; ++i) lists->addObject(texts(0, 10));
  std::size_t count = 0;
  for (auto _ : state) count = VXAdditions::vxfoundation_combinationsJoined(lists)->count();
  perElement(state, count);
}
BENCHMARK(combinations)->Unit(benchmark::kMillisecond);

/// The same combinations as the rows of a loop in the standard library's terms.
void combinationsInPlainLoops(benchmark::State& state) {
  std::vector<std::string> list;
  for (std::size_t i = 0; i < 10; ++i) list.push_back("text number " + std::to_string(i));
  std::size_t count = 0;
  for (auto _ : state) {
    std::vector<std::string> results;
    for (const auto& e : list)
      for (const auto& d : list)
        for (const auto& c : list)
          for (const auto& b : list)
            for (const auto& a : list) results.push_back(a + b + c + d + e);
    count = results.size();
    benchmark::DoNotOptimize(results.data());
  }
  perElement(state, count);
}
BENCHMARK(combinationsInPlainLoops)->Unit(benchmark::kMillisecond);

}  // namespace
