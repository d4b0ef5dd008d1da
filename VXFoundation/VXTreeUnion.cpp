#include <VXFoundation/VXTreeUnion.h>

#include <vector>

#include <Foundation/Internal/NSEqualityIndex.h>

namespace {

// A collection of children whose walk is under way.
class Level {
 public:
  explicit Level(NSRef<NSFastEnumeration> children)
      : children_(std::move(children)), next_(children_->begin()) {}

  bool isAtEnd() const { return next_ == children_->end(); }
  NSRef<NSObject> next() {
    NSRef<NSObject> child = *next_;
    ++next_;
    return child;
  }

 private:
  NSRef<NSFastEnumeration> children_;
  NSFastEnumeration::Iterator next_;
};

// Recursive in its order; the levels are kept apart from the call stack, which deep trees would exhaust.
// The visitor says whether to descend.
template <class Visitor>
void _VXFoundationVisitTreeRecursive(const VXChildrenAccessor& accessor, const NSRefPtr<NSObject>& root,
                                     Visitor&& visitor) {
  std::vector<Level> levels;
  const auto descend = [&](const NSRef<NSObject>& node) {
    if (!visitor(node)) return;
    if (const NSRefPtr<NSFastEnumeration> children = accessor(node)) levels.emplace_back(children);
  };
  if (root) descend(root);
  while (!levels.empty()) {
    if (levels.back().isAtEnd())
      levels.pop_back();
    else
      descend(levels.back().next());
  }
}

}  // namespace

NSRef<NSMutableArray> VXFoundationUnionOfList(VXNextAccessor accessor, const NSRefPtr<NSObject>& start) {
  const NSRef<NSMutableArray> list = NSMutableArray::array();
  for (NSRefPtr<NSObject> node = start; node; node = accessor(node)) list->addObject(node);
  return list;
}

NSRef<NSMutableArray> VXFoundationUnionOfTree(VXChildrenAccessor accessor, const NSRefPtr<NSObject>& root) {
  const NSRef<NSMutableArray> nodes = NSMutableArray::array();
  NSEqualityIndex index;
  _VXFoundationVisitTreeRecursive(accessor, root, [&](const NSRef<NSObject>& node) {
    const auto equalsNode = [&](const NSObject& earlier) { return earlier.isEqual(node); };
    if (index.containsOne(*node, equalsNode)) return false;
    nodes->addObject(node);
    index.add(*node);
    return true;
  });
  return nodes;
}

void VXFoundationVisitTree(VXChildrenAccessor accessor, const NSRefPtr<NSObject>& root,
                           NSFunctionRef<void(const NSRef<NSObject>& node)> visitor) {
  _VXFoundationVisitTreeRecursive(accessor, root, [&](const NSRef<NSObject>& node) {
    visitor(node);
    return true;
  });
}
