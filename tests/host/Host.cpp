#include "Host.h"

bool Shape::initWithSides(int sides) {
  sides_ = sides;
  return sides > 0;
}

int Shape::area() const { VXAdditions::subclassShouldImplementSelector(*this, "area"); }

Ref<NSObject> Countdown::enumeratedObjectAtIndex(std::size_t index) const {
  return NSNumber::numberWithInteger(static_cast<std::int64_t>(count() - index));
}

Ref<NSObject> hostMakesASquare() { return Square::shapeWithSides(1); }
Class& hostClassOfTexts() { return NSString::classObject(); }
Class& hostClassOfSquares() { return Square::classObject(); }
