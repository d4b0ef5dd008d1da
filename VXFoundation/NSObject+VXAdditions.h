#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

/// NSObject(VXAdditions): for classes that leave an operation to their subclasses. Thread-safe.
namespace VXAdditions {

/// Raises VXSubclassResponsibilityException, which says that the receiver's class should have implemented the
/// operation named by the selector, with its colons; "(null)" stands for a nil selector. The receiver is an
/// object or a class.
[[noreturn]] NS_EXPORT void subclassShouldImplementSelector(const NSObject& receiver, NSStringArg selector);

}  // namespace VXAdditions
