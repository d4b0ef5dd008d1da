// Programs that must not compile, one for each number; with 0 everything compiles.
#include <VXFoundation/VXFoundation.h>

class Shape : public NSObject::Subclass<Shape> {};
class Skipped : public Shape {};

// Without the layer, their class operations would silently make objects of the base class.
#define DERIVED(number, Name, Base) \
  class Name : public std::conditional_t<REFUSED == number, Base, Base::Subclass<Name>> {};
DERIVED(7, MailItem, VXGenericKeychainItem)
DERIVED(8, SiteItem, VXInternetKeychainItem)
DERIVED(9, Attempter, VXErrorRecoveryAttempter)

int main() {
#if REFUSED == 1
  Shape onTheStack;
#elif REFUSED == 2
  auto* outsideAllocation = new Shape;
#elif REFUSED == 3
  NSRef<Skipped> withoutALayer = Skipped::alloc();
#elif REFUSED == 4
  NSString::stringWithString("\xC3");
#elif REFUSED == 5
  NSDictionary::dictionaryWithObject("\xC3", "key");
#elif REFUSED == 6
  NSRef<Shape> shape;
#else
  NSRef<Shape> shape = Shape::alloc();
  NSString::stringWithString("\xC3\xA4");
#endif
}
