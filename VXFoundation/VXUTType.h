#pragma once

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSString.h>

/// Returns whether a uniform type identifier conforms to another one: by the declared types and tags (see
/// UTTypeConformsTo) or, between two identifiers of the dynamic form "dyn.a...", if the first packs every
/// pair that the second packs, except those whose key begins with "?"; a malformed identifier packs no pairs.
/// Returns false for nil, and for two different dynamic identifiers of which one packs bytes that are not
/// ASCII. Case-sensitive. Thread-safe.
NS_EXPORT bool VXUTTypeConformsTo(NSStringArg identifier, NSStringArg otherIdentifier);

/// Returns whether the identifier conforms to a member of the collection. Members are examined in the
/// collection's order up to the first match; a nil collection has none. Examining a member that is not a
/// string raises the invalid-argument exception; a collection that changes during the call raises the generic
/// one.
NS_EXPORT bool VXUTTypeConformsToAnyInCollection(NSStringArg identifier,
                                                 const NSRefPtr<NSFastEnumeration>& collection);
