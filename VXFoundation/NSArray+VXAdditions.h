#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSFunctionRef.h>

/// NSArray(VXAdditions): new arrays made from others, which are left unchanged. Thread-safe as long as no
/// other thread changes those.
namespace VXAdditions {

/// Maps an element and its index to an object; sets `*stop` to end with this element.
using VXMapping =
    NSFunctionRef<NSRefPtr<NSObject>(const NSRef<NSObject>& element, std::size_t index, bool* stop)>;

/// Returns every combination of one string from each of the arrays, joined without a separator. The first
/// array varies fastest. There are as many new mutable strings as the product of the arrays' counts: a single
/// empty one if there are no arrays, none if one of the arrays is empty. Raises the invalid-argument
/// exception if an element before the first empty array is not an array or, unless one of the arrays is
/// empty, a member of one is not a string.
NS_EXPORT NSRef<NSMutableArray> vxfoundation_combinationsJoined(const NSRef<NSArray>& arrays);

/// Returns what `each` returns for the elements, in order, up to and including the one at which it sets
/// `*stop`. Asserts that neither `each` nor anything it returns is nil; if the assertion handler returns,
/// using the nil raises the invalid-argument exception. Raises the generic exception if the receiver changes
/// during the enumeration.
NS_EXPORT NSRef<NSMutableArray> vxfoundation_map(const NSArray& receiver, VXMapping each);

/// Returns a copy of the receiver without the elements that equal one of `objects`; nil removes nothing. The
/// cost grows with the sum of the two counts if the elements' classes declare that their hashes agree with
/// their equality, otherwise with the product.
NS_EXPORT NSRef<NSMutableArray> vxfoundation_arrayByRemovingObjectsInArray(const NSArray& receiver,
                                                                           const NSRefPtr<NSArray>& objects);

}  // namespace VXAdditions
