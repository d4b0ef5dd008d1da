// Programs that must not compile, one for each number; with 0 all of it compiles.
#include <VXFoundation/VXFoundation.h>

class Shape : public NSObject::Subclass<Shape> {};
class Skipped : public Shape {};

int main() {
#if REFUSED == 1
  Shape onTheStack;
#elif REFUSED == 2
  auto* outsideAllocation = new Shape;
#elif REFUSED == 3
  Ref<Skipped> withoutALayer = Skipped::alloc();
#elif REFUSED == 4
  NSString::stringWithString("\xC3");
#elif REFUSED == 5
  const char* bytes = "known at run time only";
  NSString::stringWithString(bytes);
#elif REFUSED == 6
  Ref<Shape> shape;
#else
  Ref<Shape> shape = Shape::alloc();
  NSString::stringWithString("\xC3\xA4");
#endif
}
