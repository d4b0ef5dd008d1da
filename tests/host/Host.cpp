#include "tests/host/Host.h"

#include <Foundation/NSNumber.h>
#include <VXFoundation/NSObject+VXAdditions.h>

namespace {

struct Namesake : NSObject::Subclass<Namesake> {};

}  // namespace

bool Shape::initWithSides(int sides) {
  sides_ = sides;
  return sides > 0;
}

int Shape::area() const { VXAdditions::subclassShouldImplementSelector(*this, "area"); }

NSRef<NSObject> Countdown::enumeratedObjectAtIndex(std::size_t index) const {
  return NSNumber::numberWithInteger(static_cast<std::int64_t>(count() - index));
}

NSRef<NSObject> hostMakesASquare() { return Square::shapeWithSides(1); }
NSClass& hostClassOfStrings() { return NSString::classObject(); }
NSRef<NSObject> hostNamesake() { return Namesake::alloc(); }
