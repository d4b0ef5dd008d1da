#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSFunctionRef.h>

/// @file
/// Traversal of the chains, trees and graphs that a host's objects form. Nothing is kept between calls;
/// thread-safe as long as the accessors are and no other thread changes the nodes.

/// A callable, or a pointer to a member of the nodes' class, that returns the next node of a chain, nil at
/// the end. A node that is not of that class raises the invalid-argument exception.
using VXNextAccessor = NSFunctionRef<NSRefPtr<NSObject>(const NSRef<NSObject>& node)>;
/// Likewise for the collection of a node's children; nil and an empty one both mean that there are none.
using VXChildrenAccessor = NSFunctionRef<NSRefPtr<NSFastEnumeration>(const NSRef<NSObject>& node)>;

/// Returns the objects of a chain from `start` on, in order; an empty array if `start` is nil. Repeats are
/// not detected: a cyclic chain never ends.
NS_EXPORT NSRef<NSMutableArray> VXFoundationUnionOfList(VXNextAccessor accessor,
                                                        const NSRefPtr<NSObject>& start);

/// Returns the distinct nodes of a tree or graph, depth-first, each node before its children, in the order in
/// which they are first met. A node that an earlier one equals is skipped with everything below it, which
/// makes shared subtrees and cycles safe. The cost grows with nodes and edges if the nodes have the root
/// class's equality or one that agrees with their hash; other nodes are compared with every node before them.
/// Stack use does not depend on the depth. Raises the generic exception if a collection of children changes
/// while it is enumerated.
NS_EXPORT NSRef<NSMutableArray> VXFoundationUnionOfTree(VXChildrenAccessor accessor,
                                                        const NSRefPtr<NSObject>& root);

/// Calls `visitor` on every node of a tree in the same order, once for each path that leads to it; a cycle
/// never ends. Stack use and exceptions are those of VXFoundationUnionOfTree.
NS_EXPORT void VXFoundationVisitTree(VXChildrenAccessor accessor, const NSRefPtr<NSObject>& root,
                                     NSFunctionRef<void(const NSRef<NSObject>& node)> visitor);
