#include <Foundation/NSFastEnumeration.h>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

void NSFastEnumeration::raiseMutation() const {
  NSException::raise(NSGenericException, "a collection of class %@ was changed while it was enumerated",
                     NSStringFromClass(isa()));
}
