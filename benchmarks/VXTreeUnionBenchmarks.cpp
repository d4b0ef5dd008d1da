#include <VXFoundation/VXTreeUnion.h>

#include <vector>

#include "Growth.h"

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
/// Three edges per node, most of which lead to a node that was visited before.
void linkWithSharedSubgraphs(const Nodes& all) {
  for (std::size_t i = 0; i + 1 < all.size(); ++i)
    for (const std::size_t step : {1U, 7U, 4099U}) all[i]->children->addObject(all[(i + step) % all.size()]);
}

template <class Kind>
void unionOfTree(benchmark::State& state, void (*link)(const Nodes&)) {
  const Nodes all = nodes<Kind>(static_cast<std::size_t>(state.range(0)));
  link(all);
  for (auto _ : state) {
    const auto found = VXFoundationUnionOfTree(&Node::children, all[0]);
    if (found->count() != all.size()) state.SkipWithError("not all nodes were found");
  }
  countPerElement(state, all.size());
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
  countPerElement(state, all.size());
  benchmark::DoNotOptimize(visited);
}

BENCHMARK_CAPTURE(unionOfIdentities, chain, linkAsChain)->Apply(thousandToMillion);
BENCHMARK_CAPTURE(unionOfIdentities, wide, linkAsWideTree)->Apply(thousandToMillion);
BENCHMARK_CAPTURE(unionOfIdentities, shared, linkWithSharedSubgraphs)->Apply(thousandToMillion);
BENCHMARK_CAPTURE(unionOfValues, chain, linkAsChain)->Apply(thousandToMillion);
BENCHMARK_CAPTURE(unionOfValues, wide, linkAsWideTree)->Apply(thousandToMillion);
BENCHMARK_CAPTURE(unionOfValues, shared, linkWithSharedSubgraphs)->Apply(thousandToMillion);
BENCHMARK_CAPTURE(visitTree, chain, linkAsChain)->Apply(thousandToMillion);
BENCHMARK_CAPTURE(visitTree, wide, linkAsWideTree)->Apply(thousandToMillion);

}  // namespace
