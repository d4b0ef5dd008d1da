#include <Foundation/Foundation.h>
#include <VXFoundation/NSObject+VXAdditions.h>

#include <atomic>

#include "tests/host/CountedAllocations.h"
#include "tests/host/Host.h"
#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

namespace {

// A class with the same name as one in an unnamed namespace of another source file.
struct Namesake : NSObject::Subclass<Namesake> {};

// Each operator returns a class of its own.
struct Operators {
  NSClass* operator<(int) const {
    struct Local : NSObject::Subclass<Local> {};
    return &Local::classObject();
  }
  NSClass* operator->() const {
    struct Local : NSObject::Subclass<Local> {};
    return &Local::classObject();
  }
  template <class Right>
  NSClass* operator<<(Right) const {
    struct Local : NSObject::Subclass<Local> {};
    return &Local::classObject();
  }
};
template <class Value, bool flag>
struct Box : NSObject::Subclass<Box<Value, flag>> {};

}  // namespace

TEST(NSObject, HostAndLibrarySeeOneClassObject) {
  EXPECT_EQ(&hostClassOfStrings(), &NSString::classObject());
  const NSRef<NSObject> square = hostMakesASquare();
  EXPECT_EQ(&square->isa(), &Square::classObject());
  EXPECT_TRUE(square->isKindOfClass(Polygon::classObject()));
  EXPECT_FALSE(square->isKindOfClass(Link::classObject()));
  EXPECT_TRUE(NSDynamicCast<Shape>(square));
  EXPECT_FALSE(NSDynamicCast<NSString>(square));
  EXPECT_FALSE(NSDynamicCast<Shape>(NSRefPtr<NSObject>()));
}

TEST(NSObject, ClassesAreObjectsWithANameAndASuperclass) {
  NSClass& square = Square::classObject();
  EXPECT_EQ(square.name(), "Square");
  EXPECT_EQ(square.superclass(), &Polygon::classObject());
  EXPECT_EQ(NSObject::classObject().superclass(), nullptr);
  EXPECT_EQ(&square.isa(), &NSClass::classObject());
  EXPECT_TRUE(square.isKindOfClass(NSObject::classObject()));
  EXPECT_TRUE(NSMutableString::classObject().isSubclassOfClass(NSString::classObject()));
  struct Local : NSObject::Subclass<Local> {};
  EXPECT_EQ(Local::classObject().name(), "Local");
}

TEST(NSObject, AClassIsNamedWithoutTheOperatorThatItIsLocalTo) {
  const Operators a;
  for (NSClass* each : {a < 1, a.operator->(), a << 1}) EXPECT_EQ(each->name(), "Local");
  EXPECT_EQ((Box<int, (2 > 1)>::classObject().name()), "Box<int, true>");
  EXPECT_EQ(NSBlock<void(NSRef<Link>)>::classObject().name(), "NSBlock<void (NSRef<Link>)>");
}

TEST(NSObject, NamesakesInOtherSourceFilesAreDistinctClasses) {
  EXPECT_NE(&hostNamesake()->isa(), &Namesake::classObject());
  EXPECT_FALSE(NSDynamicCast<Namesake>(hostNamesake()));
  EXPECT_TRUE(NSDynamicCast<Namesake>(NSRef<NSObject>(Namesake::alloc())));
  EXPECT_EQ(hostNamesake()->isa().name(), Namesake::classObject().name());
}

TEST(NSObject, ClassOperationsMakeTheReceivingClass) {
  const NSRefPtr<Shape> shape = Shape::shapeWithSides(3);
  const NSRefPtr<Polygon> polygon = Polygon::shapeWithSides(3);
  const NSRefPtr<Square> square = Square::shapeWithSides(3);
  EXPECT_EQ(shape->sides(), 3);
  EXPECT_EQ(polygon->sides(), 4) << "the class operation of the subclass is called";
  EXPECT_EQ(square->sides(), 4) << "the initialiser is dispatched on the receiver";
  EXPECT_EQ(square->area(), 40);
  EXPECT_EQ(Shape::shapeWithSides(0), nullptr) << "an initialiser can refuse";
}

TEST(NSObject, AMissingOverrideNamesTheSubclass) {
  const auto reason = [](auto&& action) {
    const auto exception = exceptionOf(action);
    EXPECT_FALSE(exception->userInfo());
    return std::string(exception->what());
  };
  struct Circle : Shape::Subclass<Circle> {};
  const std::string name = "VXSubclassResponsibilityException: ";
  const std::string rest = ", is not implemented in the superclass, it is the subclass' responsibility.";
  const auto circle = Circle::alloc();
  EXPECT_EQ(reason([&] { circle->area(); }), name + "-[Circle area]" + rest);
  EXPECT_EQ(reason([&] { VXAdditions::subclassShouldImplementSelector(Circle::classObject(), "area"); }),
            name + "+[Circle area]" + rest);
  EXPECT_EQ(reason([&] { VXAdditions::subclassShouldImplementSelector(*circle, "scaleBy:around:"); }),
            name + "-[Circle scaleBy:around:]" + rest);
  EXPECT_EQ(reason([&] { VXAdditions::subclassShouldImplementSelector(*circle, nullptr); }),
            name + "-[Circle (null)]" + rest);
}

TEST(NSObject, NilRaisesAndChangesNothing) {
  const std::string invalid = "NSInvalidArgumentException";
  const NSRefPtr<NSString> nil;
  EXPECT_EQ(raised([&] { const NSRef<NSString> text = nil; }), invalid);
  EXPECT_EQ(raised([&] { const NSRef<NSObject> object = nullptr; }), invalid);
  const auto array = NSMutableArray::arrayWithObjects({"a"});
  EXPECT_EQ(raised([&] { array->addObject(nil); }), invalid);
  EXPECT_EQ(raised([&] { array->replaceObjectAtIndex(0, nullptr); }), invalid);
  EXPECT_EQ(raised([&] { NSArray::arrayWithObjects({"a", nil}); }), invalid);
  EXPECT_TRUE(array->isEqual(NSArray::arrayWithObject("a")));
  const auto set = NSMutableSet::set();
  EXPECT_EQ(raised([&] { set->addObject(nil); }), invalid);
  const auto dictionary = NSMutableDictionary::dictionary();
  EXPECT_EQ(raised([&] { dictionary->setObject(nil, "key"); }), invalid);
  EXPECT_EQ(raised([&] { dictionary->setObject("object", nil); }), invalid);
  EXPECT_EQ(set->count() + dictionary->count(), 0U);
  EXPECT_FALSE(dictionary->objectForKey(nullptr));
  NSRef<NSMutableArray> moved = array;
  const NSRef<NSMutableArray> taken = std::move(moved);
  EXPECT_EQ(raised([&] { moved->count(); }), invalid);
  EXPECT_EQ(raised([&] { NSRefPtr<NSArray> handle = moved; }), invalid);
  moved = taken;
  EXPECT_EQ(moved->count(), 1U);
}

TEST(NSObject, MutableObjectsCanBeUsedAsImmutableOnesAndCopied) {
  const auto array = NSMutableArray::array();
  const NSRef<NSArray> live = array;
  const NSRef<NSArray> taken = live->copy();
  array->addObject("x");
  EXPECT_EQ(live->count(), 1U);
  EXPECT_EQ(taken->count(), 0U);
  EXPECT_EQ(taken->copy(), taken) << "copying an immutable object takes another reference";
  EXPECT_NE(NSRefPtr<NSArray>(taken->mutableCopy()), NSRefPtr<NSArray>(taken));

  const NSRef<NSObject> changeable = NSMutableString::stringWithString("a");
  EXPECT_FALSE(changeable->copy()->isKindOfClass(NSMutableString::classObject()));
  EXPECT_TRUE(changeable->mutableCopy()->isKindOfClass(NSMutableString::classObject()));
  EXPECT_EQ(raised([] { Link::alloc()->mutableCopy(); }), "NSInvalidArgumentException");
}

TEST(NSObject, ShortResultsTakeOneAllocation) {
  EXPECT_EQ(allocationsOf([] { text("sixteen letters."); }), 1U);
  EXPECT_EQ(allocationsOf([] { NSMutableData::dataWithLength(100)->mutableBytes()[99] = std::byte{1}; }), 1U);
  EXPECT_EQ(allocationsOf([] {
              const auto text = NSMutableString::stringWithCapacity(3);
              text->appendCharacters(u"abc");
            }),
            1U);
}

TEST(NSObject, AChainOfAMillionLinksIsReleasedIteratively) {
  static std::atomic<int> alive;
  struct Counted : Link::Subclass<Counted> {
    Counted() { ++alive; }
    ~Counted() override { --alive; }
  };
  NSRefPtr<Link> chain;
  for (int i = 0; i < 1'000'000; ++i) {
    const NSRef<Link> link = Counted::alloc();
    link->next = std::exchange(chain, link);
  }
  EXPECT_EQ(alive, 1'000'000);
  chain = nullptr;
  EXPECT_EQ(alive, 0);

  NSRef<NSArray> nested = NSArray::array();
  for (int i = 0; i < 1'000'000; ++i) nested = NSArray::arrayWithObject(nested);
}

TEST(NSObject, HandlesAreOneWordAndCompareByIdentity) {
  static_assert(sizeof(NSRef<Link>) == sizeof(void*) && sizeof(NSRefPtr<Link>) == sizeof(void*));
  const auto link = Link::alloc();
  Link& same = *link;
  EXPECT_EQ(NSRef<NSObject>(same), link);
  const auto shape = NSRef(Shape::shapeWithSides(3));
  EXPECT_EQ(shape->itself(), shape) << "an object can return itself";
}

TEST(NSObject, CollectionsShareOneInterfaceForEnumeration) {
  const auto walked = [](const NSFastEnumeration& collection) {
    std::string elements;
    for (const NSRef<NSObject> element : collection) elements += *bytesOf(element->description());
    return elements;
  };
  EXPECT_EQ(walked(*Countdown::alloc()), "321");
  EXPECT_EQ(walked(*NSArray::arrayWithObjects({"a", "b", "a"})), "aba");
  EXPECT_EQ(walked(*NSSet::setWithObjects({"b", "a", "b"})), "ba");
  EXPECT_EQ(walked(*NSDictionary::dictionaryWithObjectsAndKeys({{"1", "z"}, {"2", "y"}, {"3", "z"}})), "zy");
}

TEST(NSObject, ChangesDuringEnumerationRaise) {
  const auto array = NSMutableArray::arrayWithObjects({"a", "b"});
  const auto set = NSMutableSet::setWithObjects({"a", "b"});
  const auto dictionary = NSMutableDictionary::dictionaryWithObjectsAndKeys({{"1", "a"}, {"2", "b"}});
  const auto walk = [](const NSFastEnumeration& collection, auto&& change) {
    return raised([&] {
      for (const NSRef<NSObject> element : collection) change(element);
    });
  };
  EXPECT_EQ(walk(*array, [&](NSObjectArg element) { array->removeObject(element); }), "NSGenericException");
  EXPECT_EQ(walk(*set, [&](NSObjectArg element) { set->removeObject(element); }), "NSGenericException");
  EXPECT_EQ(walk(*dictionary, [&](NSObjectArg element) { dictionary->removeObjectForKey(element); }),
            "NSGenericException");
  EXPECT_EQ(array->count() + set->count() + dictionary->count(), 3U);
  const auto grow = [&](NSObjectArg) {
    if (array->count() == 1) array->addObjectsFromArray(array->copy());
  };
  EXPECT_EQ(walk(*array, grow), "NSGenericException");
  EXPECT_EQ(walk(*array, [&](NSObjectArg) { array->removeObjectAtIndex(0); }), "NSGenericException");
  EXPECT_EQ(walk(*set, [&](NSObjectArg element) { set->addObject(element); }), "nothing") << "no change";
}
