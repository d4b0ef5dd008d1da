// Programs that must not compile, one for each number; with 0 all of it compiles.
#include <VXFoundation/VXFoundation.h>

class Shape : public NSObject::Subclass<Shape> {};
class Skipped : public Shape {};

// Without the layer in between, their class operations would quietly make objects of the base class.
#if REFUSED == 7
class MailItem : public VXGenericKeychainItem {};
#elif REFUSED == 8
class SiteItem : public VXInternetKeychainItem {};
#elif REFUSED == 9
class Attempter : public VXErrorRecoveryAttempter {};
#else
class MailItem : public VXGenericKeychainItem::Subclass<MailItem> {};
class SiteItem : public VXInternetKeychainItem::Subclass<SiteItem> {};
class Attempter : public VXErrorRecoveryAttempter::Subclass<Attempter> {};
#endif

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
