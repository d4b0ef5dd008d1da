#include <Foundation/NSSet.h>
#include <VXFoundation/VXTreeUnion.h>

#include <random>
#include <sstream>

#include "tests/support/Support.h"

namespace {

// A node of the graphs in these tests, equal only to itself.
struct Node : NSObject::Subclass<Node> {
  explicit Node(int number) : value(number) {}
  NSRefPtr<NSFastEnumeration> descendants() const { return children; }
  int value;
  NSRefPtr<NSMutableArray> children;
  NSRefPtr<Node> next;
};

int valueOf(const NSRefPtr<NSObject>& node) { return NSDynamicCast<Node>(node)->value; }

// Equal by value, with a hash that agrees and collides; counts the comparisons.
struct Hashed : Node::Subclass<Hashed> {
  using HashAgreesWithEquality = Hashed;
  using Layer = Node::Subclass<Hashed>;
  using Layer::Layer;
  bool isEqual(const NSRefPtr<NSObject>& other) const override {
    return ++compared, NSDynamicCast<Hashed>(other) && valueOf(other) == value;
  }
  std::size_t hash() const override { return static_cast<std::size_t>(value / 2); }
  static inline std::size_t compared = 0;
};
// Also equal by value to the nodes above, with a different hash.
struct Rehashed : Hashed::Subclass<Rehashed> {
  using Layer = Hashed::Subclass<Rehashed>;
  using Layer::Layer;
  std::size_t hash() const override { return 17; }
};
// One-sided: equals any node with a smaller value, so not even itself, with a hash that does not agree.
template <class Base>
struct Greedy : Base::template Subclass<Greedy<Base>> {
  using Layer = typename Base::template Subclass<Greedy<Base>>;
  using Layer::Layer;
  bool isEqual(const NSRefPtr<NSObject>& other) const override { return valueOf(other) < this->value; }
};
// Equal only to itself, with a hash that changes with each call.
struct Drifting : Node::Subclass<Drifting> {
  using Layer = Node::Subclass<Drifting>;
  using Layer::Layer;
  std::size_t hash() const override { return ++drift; }
  static inline std::size_t drift = 0;
};

NSRef<Node> anyNode(std::mt19937& random, bool finite) {
  const int value = static_cast<int>(random() % 6);
  const auto kind = random() % (finite ? 6 : 5);
  if (kind < 1) return Node::alloc(value);
  if (kind < 2) return Drifting::alloc(value);
  if (kind < 4) return Hashed::alloc(value);
  if (kind < 5) return Rehashed::alloc(value);
  if (value % 2) return Greedy<Hashed>::alloc(random() % 3 ? 0 : value);
  return Greedy<Node>::alloc(random() % 3 ? 0 : value);
}

// Nodes with random edges, only forward ones if paths must end; the destructor breaks the cycles.
struct Graph {
  Graph(std::mt19937& random, bool finite) {
    for (std::size_t i = 1 + random() % 14; i > 0; --i) nodes.push_back(anyNode(random, finite));
    for (std::size_t i = 0, count = nodes.size(); i < count; ++i) {
      if (random() % 4 > 0) nodes[i]->children = NSMutableArray::array();
      for (std::size_t edge = random() % 4; edge > 0 && nodes[i]->children && i + 1 < count; --edge)
        nodes[i]->children->addObject(nodes[finite ? i + 1 + random() % (count - i - 1) : random() % count]);
    }
  }
  ~Graph() {
    for (const NSRef<Node>& node : nodes) node->children = nullptr;
  }
  std::vector<NSRef<Node>> nodes;
};

// The definition of both walks, by recursion; a union omits nodes equal to one that it has.
void walk(const NSRef<NSObject>& node, NSMutableArray& array, bool isUnion) {
  if (isUnion && array.containsObject(node)) return;
  array.addObject(node);
  const NSRefPtr<NSArray> children = NSDynamicCast<Node>(node)->children;
  for (std::size_t i = 0; children && i < children->count(); ++i)
    walk(children->objectAtIndex(i), array, isUnion);
}

std::string addresses(const NSArray& array) {
  std::ostringstream text;
  for (const NSRef<NSObject> each : array) text << each.get() << ' ';
  return text.str();
}

NSRef<Node> chain(int count) {
  NSRef<Node> first = Node::alloc(--count);
  while (count > 0) {
    const NSRef<Node> after = std::exchange(first, Node::alloc(--count));
    first->next = after;
    first->children = NSMutableArray::arrayWithObjects({after});
  }
  return first;
}

constexpr auto descendants = &Node::descendants;

}  // namespace

TEST(VXTreeUnion, UnionAndVisitMatchTheDefinitionOnRandomGraphs) {
  std::mt19937 random(62);
  for (int round = 0; round < 20000; ++round) {
    const bool finite = round % 2 == 0;  // cycles are endless for a visit, and for nodes that equal nothing
    const Graph graph(random, finite);
    const NSRef<Node> root = graph.nodes[0];
    const auto united = NSMutableArray::array(), walked = NSMutableArray::array();
    walk(root, *united, true);
    ASSERT_EQ(addresses(*VXFoundationUnionOfTree(descendants, root)), addresses(*united)) << round;
    if (!finite) continue;
    walk(root, *walked, false);
    const auto visited = NSMutableArray::array();
    VXFoundationVisitTree(&Node::children, root, [&](const auto& node) { visited->addObject(node); });
    ASSERT_EQ(addresses(*visited), addresses(*walked)) << round;
  }
}

TEST(VXTreeUnion, RemovalMatchesALinearSearchOnRandomNodes) {
  std::mt19937 random(64);
  for (int round = 0; round < 20000; ++round) {
    const auto array = NSMutableArray::array(), unwanted = NSMutableArray::array(),
               kept = NSMutableArray::array();
    for (std::size_t i = 0; i < 8; ++i) array->addObject(anyNode(random, true));
    for (std::size_t i = random() % 5; i > 0; --i)
      unwanted->addObject(random() % 2 ? anyNode(random, true) : array->objectAtIndex(random() % 8));
    for (const NSRef<NSObject> element : *array) {
      bool goes = false;
      for (const NSRef<NSObject> each : *unwanted) goes = goes || element->isEqual(each);
      if (!goes) kept->addObject(element);
    }
    array->removeObjectsInArray(unwanted);
    ASSERT_EQ(addresses(*array), addresses(*kept)) << "round " << round;
  }
}

TEST(VXTreeUnion, CostGrowsWithNodesAndEdges) {
  std::mt19937 random(65);
  std::vector<NSRef<Node>> nodes;
  const auto equals = NSMutableArray::array();
  for (int i = 0; i < 200'000; ++i) {
    nodes.push_back(i % 2 ? Node::alloc(i) : NSRef<Node>(Hashed::alloc(i)));
    if (i % 2 == 0) equals->addObject(Hashed::alloc(i));
  }
  for (std::size_t i = 0; i < nodes.size(); ++i)
    nodes[i]->children =
        NSMutableArray::arrayWithObjects({nodes[random() % nodes.size()], nodes[(i + 1) % nodes.size()]});
  Hashed::compared = 0;
  // With a linear search, each of these would take hours.
  const auto found = VXFoundationUnionOfTree(descendants, nodes[0]);
  EXPECT_EQ(found->count(), nodes.size());
  EXPECT_LE(Hashed::compared, 2 * nodes.size());
  found->removeObjectsInArray(equals);
  EXPECT_EQ(found->count(), nodes.size() / 2);
  EXPECT_LE(Hashed::compared, 3 * nodes.size());
  for (const NSRef<Node>& node : nodes) node->children = nullptr;
}

TEST(VXTreeUnion, DepthDoesNotExhaustTheStack) {
  const int depth = 1'000'000;
  const NSRef<Node> root = chain(depth);
  int visits = 0;
  VXFoundationVisitTree(descendants, root, [&](const auto& node) { visits += valueOf(node) == visits; });
  EXPECT_EQ(visits, depth);
  EXPECT_EQ(valueOf(VXFoundationUnionOfTree(descendants, root)->lastObject()), depth - 1);
  const auto array = VXFoundationUnionOfList(&Node::next, root);
  EXPECT_EQ(array->count(), static_cast<std::size_t>(depth));
  EXPECT_EQ(valueOf(array->lastObject()), depth - 1);
}

TEST(VXTreeUnion, RootsAndCollectionsOfEveryKind) {
  const NSRef<Node> a = Node::alloc(1), b = Node::alloc(2), root = Node::alloc(0);
  const NSRefPtr<NSSet> set = NSSet::setWithObjects({b, a, b});
  const auto children = [&](const auto& node) { return node == root ? set : NSRefPtr<NSSet>(); };
  EXPECT_EQ(addresses(*VXFoundationUnionOfTree(children, root)),
            addresses(*NSArray::arrayWithObjects({root, b, a})));
  EXPECT_EQ(VXFoundationUnionOfTree(nullptr, nullptr)->count(), 0U);
  EXPECT_EQ(VXFoundationUnionOfList(&Node::next, nullptr)->count(), 0U);
  VXFoundationVisitTree(descendants, nullptr, [](const auto&) { ADD_FAILURE(); });
}

TEST(VXTreeUnion, ForeignNodesAndNilCallablesRaise) {
  const NSRef<Node> node = Node::alloc(1);
  const NSRef<NSObject> stranger = text("x");
  const std::string invalid = "NSInvalidArgumentException";
  EXPECT_EQ(raised([&] { VXFoundationUnionOfTree(descendants, stranger); }), invalid);
  EXPECT_EQ(raised([&] { VXFoundationUnionOfList(&Node::next, stranger); }), invalid);
  EXPECT_EQ(raised([&] { VXFoundationUnionOfTree(nullptr, node); }), invalid);
  EXPECT_EQ(raised([&] { VXFoundationVisitTree(descendants, node, nullptr); }), invalid);
}

TEST(VXTreeUnion, ChildrenThatChangeDuringEnumerationRaise) {
  for (int changed = 0; changed < 3; ++changed) {
    const NSRef<Node> root = chain(3), middle = root->next, last = middle->next;
    last->children = NSMutableArray::array();
    const NSRef<NSMutableArray> arrays[] = {root->children, middle->children, last->children};
    const auto visit = [&](const auto& node) {
      if (node == last) arrays[changed]->addObject(Node::alloc(9));
    };
    EXPECT_EQ(raised([&] { VXFoundationVisitTree(descendants, root, visit); }),
              changed < 2 ? "NSGenericException" : "nothing")
        << "the array of the last node is not enumerated yet";
  }
}
