#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSFunctionRef.h>

/// @file
/// Walks over the chains, trees and graphs that a host's objects make. Nothing is kept between calls; safe on
/// any thread as long as the accessors are and no other thread changes the nodes.

/// From a node to the next one of its chain, absent at the end: a callable, or a pointer to a member of the
/// nodes' class. A node that is not of that class raises the invalid-argument exception.
using VXNextAccessor = NSFunctionRef<NSRefPtr<NSObject>(const NSRef<NSObject>& node)>;
/// From a node to the collection of its children; absent and empty both mean that there are none.
using VXChildrenAccessor = NSFunctionRef<NSRefPtr<NSFastEnumeration>(const NSRef<NSObject>& node)>;

/// The objects of a chain from `start` on, in order; none for an absent start. There is no check for
/// repeats: a chain that comes back never ends.
NS_EXPORT NSRef<NSMutableArray> VXFoundationUnionOfList(VXNextAccessor accessor,
                                                        const NSRefPtr<NSObject>& start);

/// The distinct nodes of a tree or graph, depth-first, each node before its children, in the order in which
/// they are first met. A node that an earlier one is equal to is left out with all below it, which makes
/// shared subtrees and cycles safe. The cost grows with nodes and edges for nodes with the root class's
/// equality or one that agrees with their hash; others are compared with each node before them.
/// Any depth takes a fixed amount of stack. Raises the generic exception when a collection of children
/// changes during its walk.
NS_EXPORT NSRef<NSMutableArray> VXFoundationUnionOfTree(VXChildrenAccessor accessor,
                                                        const NSRefPtr<NSObject>& root);

/// Calls `visitor` on every node of a tree in the same order, once for each path that leads to it; a cycle
/// never ends. Stack and exceptions as for VXFoundationUnionOfTree.
NS_EXPORT void VXFoundationVisitTree(VXChildrenAccessor accessor, const NSRefPtr<NSObject>& root,
                                     NSFunctionRef<void(const NSRef<NSObject>& node)> visitor);
