#include <random>

#include "Support.h"

namespace {

// What the graphs of these tests are made of: identity equality.
struct Node : NSObject::Subclass<Node> {
  explicit Node(int number) : value(number) {}
  RefPtr<NSFastEnumeration> descendants() const { return children; }
  int value;
  RefPtr<NSMutableArray> children;
  RefPtr<Node> next;
};

int valueOf(const RefPtr<NSObject>& object) {
  const auto* node = dynamicCast<Node>(object.get());
  return node ? node->value : -1;
}

// Equal by value, with a hash that agrees.
struct Hashed : Node::Subclass<Hashed> {
  using HashAgreesWithEquality = Hashed;
  using Layer = Node::Subclass<Hashed>;
  using Layer::Layer;
  bool isEqual(const RefPtr<NSObject>& other) const override {
    return dynamicCast<Hashed>(other) && valueOf(other) == value;
  }
  std::size_t hash() const override { return static_cast<std::size_t>(value); }
};
// Equal by value to the ones above, too, with a hash of its own.
struct Rehashed : Hashed::Subclass<Rehashed> {
  using Layer = Hashed::Subclass<Rehashed>;
  using Layer::Layer;
  std::size_t hash() const override { return 17; }
};
// One-sided: equals whatever has a value that is not larger, with the hash of identity.
struct Greedy : Node::Subclass<Greedy> {
  using Layer = Node::Subclass<Greedy>;
  using Layer::Layer;
  bool isEqual(const RefPtr<NSObject>& other) const override { return valueOf(other) <= value; }
};
// Equal to nothing, not even itself.
struct Aloof : Node::Subclass<Aloof> {
  using Layer = Node::Subclass<Aloof>;
  using Layer::Layer;
  bool isEqual(const RefPtr<NSObject>&) const override { return false; }
};

Ref<Node> anyNode(std::mt19937& random, bool finite) {
  const int value = static_cast<int>(random() % 6);
  switch (random() % (finite ? 7 : 6)) {
    case 0:
    case 1:
      return Node::alloc(value);
    case 2:
    case 3:
      return Hashed::alloc(value);
    case 4:
      return Rehashed::alloc(value);
    case 5:
      return Greedy::alloc(random() % 3 ? 0 : value);
    default:
      return Aloof::alloc(value);
  }
}

// Nodes with random edges, forward ones alone where paths must end; the cycles are broken at the end.
struct Graph {
  Graph(std::mt19937& random, bool finite) {
    const std::size_t count = 1 + random() % 14;
    for (std::size_t i = 0; i < count; ++i) nodes.push_back(anyNode(random, finite));
    for (std::size_t i = 0; i < count; ++i) {
      if (random() % 4 == 0) continue;
      nodes[i]->children = NSMutableArray::array();
      for (std::size_t edge = random() % 4; edge > 0 && i + 1 < count; --edge)
        nodes[i]->children->addObject(nodes[finite ? i + 1 + random() % (count - i - 1) : random() % count]);
    }
  }
  ~Graph() {
    for (const Ref<Node>& node : nodes) node->children = nullptr;
  }
  std::vector<Ref<Node>> nodes;
};

// The walk as it is defined, by recursion and a linear search.
template <class Visitor>
void walk(const Ref<NSObject>& node, bool visit, Visitor&& visitor) {
  if (visit && !visitor(node)) return;
  const RefPtr<NSArray> children = dynamicCast<Node>(node)->children;
  if (!children) return;
  for (const Ref<NSObject> child : *children)
    if (visitor(child)) walk(child, false, visitor);
}

std::string addresses(const NSArray& list) {
  std::ostringstream text;
  for (const Ref<NSObject> each : list) text << each.get() << ' ';
  return text.str();
}

// `a` with a chain of `count` nodes below it.
Ref<Node> chain(int count) {
  const Ref<Node> first = Node::alloc(0);
  Ref<Node> last = first;
  for (int i = 1; i < count; ++i) {
    const Ref<Node> next = Node::alloc(i);
    last->next = next;
    last->children = NSMutableArray::arrayWithObjects({next});
    last = next;
  }
  return first;
}

constexpr auto descendants = &Node::descendants;

}  // namespace

TEST(VXTreeUnion, UnionIsThatOfTheLinearSearchOnRandomGraphs) {
  std::mt19937 random(62);
  for (int round = 0; round < 20000; ++round) {
    const bool finite = round % 2 == 0;  // a node that equals nothing makes a cycle endless
    const Graph graph(random, finite);
    const auto expected = NSMutableArray::array();
    walk(graph.nodes[0], true, [&](const Ref<NSObject>& node) {
      if (expected->containsObject(node)) return false;
      expected->addObject(node);
      return true;
    });
    ASSERT_EQ(addresses(*VXFoundationUnionOfTree(descendants, graph.nodes[0])), addresses(*expected))
        << "round " << round;
  }
}

TEST(VXTreeUnion, VisitMeetsEveryPathInOrder) {
  std::mt19937 random(63);
  for (int round = 0; round < 2000; ++round) {
    const Graph graph(random, true);
    std::vector<NSObject*> expected, visited;
    walk(graph.nodes[0], true,
         [&](const Ref<NSObject>& node) { return expected.push_back(node.get()), true; });
    VXFoundationVisitTree(&Node::children, graph.nodes[0],
                          [&](const Ref<NSObject>& node) { visited.push_back(node.get()); });
    ASSERT_EQ(visited, expected);
  }
}

TEST(VXTreeUnion, RemovalIsThatOfTheLinearSearchOnRandomNodes) {
  std::mt19937 random(64);
  for (int round = 0; round < 20000; ++round) {
    const auto list = NSMutableArray::array(), unwanted = NSMutableArray::array(),
               expected = NSMutableArray::array();
    for (std::size_t i = 0; i < 8; ++i) list->addObject(anyNode(random, true));
    for (std::size_t i = random() % 5; i > 0; --i)
      unwanted->addObject(random() % 2 ? anyNode(random, true) : list->objectAtIndex(random() % 8));
    for (const Ref<NSObject> element : *list) {
      bool goes = false;
      for (const Ref<NSObject> each : *unwanted) goes = goes || element->isEqual(each);
      if (!goes) expected->addObject(element);
    }
    list->removeObjectsInArray(unwanted);
    ASSERT_EQ(addresses(*list), addresses(*expected)) << "round " << round;
  }
}

TEST(VXTreeUnion, AbsentRootsAndLoneNodes) {
  const Ref<Node> lone = Node::alloc(1);
  const auto never = [](const Ref<NSObject>&) { ADD_FAILURE(); };
  EXPECT_EQ(VXFoundationUnionOfTree(descendants, nullptr)->count(), 0U);
  EXPECT_EQ(VXFoundationUnionOfList(&Node::next, nullptr)->count(), 0U);
  VXFoundationVisitTree(descendants, nullptr, never);
  EXPECT_EQ(addresses(*VXFoundationUnionOfTree(descendants, lone)),
            addresses(*NSArray::arrayWithObject(lone)));
  EXPECT_EQ(addresses(*VXFoundationUnionOfList(&Node::next, lone)),
            addresses(*NSArray::arrayWithObject(lone)));
}

TEST(VXTreeUnion, ChildrenComeFromAnyCollection) {
  const Ref<Node> a = Node::alloc(1), b = Node::alloc(2), root = Node::alloc(0);
  const RefPtr<NSSet> set = NSSet::setWithObjects({b, a, b});
  const auto found = VXFoundationUnionOfTree(
      [&](const Ref<NSObject>& node) { return node == root ? set : RefPtr<NSSet>(); }, root);
  EXPECT_EQ(addresses(*found), addresses(*NSArray::arrayWithObjects({root, b, a})));
}

TEST(VXTreeUnion, NodesThatDoNotAnswerRaise) {
  const Ref<Node> node = Node::alloc(1);
  const Ref<NSObject> stranger = text("x");
  const std::string invalid = "NSInvalidArgumentException";
  EXPECT_EQ(raised([&] { VXFoundationUnionOfTree(descendants, stranger); }), invalid);
  EXPECT_EQ(raised([&] { VXFoundationUnionOfList(&Node::next, stranger); }), invalid);
  EXPECT_EQ(raised([&] { VXFoundationUnionOfTree(nullptr, node); }), invalid);
  EXPECT_EQ(raised([&] { VXFoundationVisitTree(descendants, node, nullptr); }), invalid);
  EXPECT_EQ(raised([&] { VXFoundationUnionOfTree(nullptr, nullptr); }), "nothing");
}

TEST(VXTreeUnion, ChildrenThatChangeDuringTheirWalkRaise) {
  for (int changed = 0; changed < 3; ++changed) {
    const Ref<Node> root = chain(3), middle = root->next, last = middle->next;
    last->children = NSMutableArray::array();
    const Ref<NSMutableArray> lists[] = {root->children, middle->children, last->children};
    const auto visit = [&](const Ref<NSObject>& node) {
      if (node == last) lists[changed]->addObject(Node::alloc(9));
    };
    EXPECT_EQ(raised([&] { VXFoundationVisitTree(descendants, root, visit); }),
              changed < 2 ? "NSGenericException" : "nothing")
        << "the list of the last node is not being walked yet";
  }
}

TEST(VXTreeUnion, DepthDoesNotExhaustTheStack) {
  const int depth = 1'000'000;
  const Ref<Node> root = chain(depth);
  int visits = 0;
  VXFoundationVisitTree(descendants, root,
                        [&](const Ref<NSObject>& node) { visits += valueOf(node) == visits; });
  EXPECT_EQ(visits, depth);
  EXPECT_EQ(VXFoundationUnionOfTree(descendants, root)->count(), static_cast<std::size_t>(depth));
  const auto list = VXFoundationUnionOfList(&Node::next, root);
  EXPECT_EQ(list->count(), static_cast<std::size_t>(depth));
  EXPECT_EQ(valueOf(list->lastObject()), depth - 1);
}

TEST(VXTreeUnion, CostGrowsWithNodesAndEdges) {
  // Compared with one another, these would keep the test busy for hours.
  std::mt19937 random(65);
  std::vector<Ref<Node>> nodes;
  for (int i = 0; i < 300'000; ++i) nodes.push_back(i % 2 ? Node::alloc(i) : Ref<Node>(Hashed::alloc(i)));
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const Ref<Node> below = nodes[(i + 1) % nodes.size()];
    nodes[i]->children = NSMutableArray::arrayWithObjects({nodes[random() % nodes.size()], below});
  }
  EXPECT_EQ(VXFoundationUnionOfTree(descendants, nodes[0])->count(), nodes.size());
  for (const Ref<Node>& node : nodes) node->children = nullptr;
}
