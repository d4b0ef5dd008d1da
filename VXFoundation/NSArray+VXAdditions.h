#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSFunctionRef.h>

/// NSArray(VXAdditions): new lists made of others, which stay as they are. Safe on any thread as long as no
/// other thread changes those.
namespace VXAdditions {

/// Makes of an element and its index another object; sets `*stop` to end with this element.
using VXMapping =
    NSFunctionRef<NSRefPtr<NSObject>(const NSRef<NSObject>& element, std::size_t index, bool* stop)>;

/// Every combination of one text from each of the lists, the pieces joined with nothing between them. The
/// first list varies fastest. As many new growable texts as the product of the lists' counts says: a single
/// empty one for no lists, none where one of the lists is empty. Raises the invalid-argument exception for
/// what is no list of texts.
NS_EXPORT NSRef<NSMutableArray> vxfoundation_combinationsJoined(const NSRef<NSArray>& lists);

/// What `each` makes of the elements, in order, up to and including the one at which it sets `*stop`.
/// Asserts that `each` and what it makes are present; where the assertion handler returns, going on with
/// nil raises the invalid-argument exception. Raises the generic exception when the receiver changes
/// meanwhile.
NS_EXPORT NSRef<NSMutableArray> vxfoundation_map(const NSArray& receiver, VXMapping each);

/// A copy of the receiver without the elements that equal one of the objects; absent objects remove
/// nothing. The cost grows with the sum of both counts where the elements' classes say that their hashes
/// agree with their equality, else with the product.
NS_EXPORT NSRef<NSMutableArray> vxfoundation_arrayByRemovingObjectsInArray(const NSArray& receiver,
                                                                           const NSRefPtr<NSArray>& objects);

}  // namespace VXAdditions
