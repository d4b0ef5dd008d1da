#pragma once

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSString.h>

/// Whether a uniform type identifier conforms to another one: by the types that are declared (see
/// UTTypeConformsTo) or, between two identifiers of the dynamic form "dyn.a...", when every pair that the
/// second one packs is also one of the first, but for those whose key begins with "?". False for an absent
/// argument and for what cannot be decoded. Exact in case. For any number of threads at once.
NS_EXPORT bool VXUTTypeConformsTo(NSStringArg identifier, NSStringArg otherIdentifier);

/// Whether the identifier conforms to one of the collection, which are asked in its order up to the first
/// such one; to none of an absent collection. A member that is asked and is no text raises the
/// invalid-argument exception, a collection that changes meanwhile the generic one.
NS_EXPORT bool VXUTTypeConformsToAnyInCollection(NSStringArg identifier,
                                                 const NSRefPtr<NSFastEnumeration>& collection);
