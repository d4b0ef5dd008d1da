#include <VXFoundation/VXTreeUnion.h>

#include <vector>

#include <Foundation/Internal/NSEqualityIndex.h>

namespace {

// A collection of children that is being enumerated.
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

// Visits in the order of a recursion, but does not keep the levels on the call stack, which deep trees would
// exhaust. The visitor returns whether to descend.
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
  const NSRef<NSMutableArray> nodes = NSMutableArray::array();
  for (NSRefPtr<NSObject> node = start; node; node = accessor(node)) nodes->addObject(node);
  return nodes;
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
