#include <atomic>
#include <thread>

#include "tests/host/CountedAllocations.h"
#include "tests/host/Host.h"
#include "tests/support/Bytes.h"
#include "tests/support/RecordedAssertions.h"

namespace {

// Equality of contents with the hash of identity, and with a hash that agrees.
struct Loose : NSObject::Subclass<Loose> {
  bool isEqual(const NSRefPtr<NSObject>&) const override { return true; }
};
struct Keyed : NSObject::Subclass<Keyed> {
  using HashAgreesWithEquality = Keyed;
  bool isEqual(const NSRefPtr<NSObject>&) const override { return true; }
  std::size_t hash() const override { return 7; }
};
struct LooselyKeyed : Keyed::Subclass<LooselyKeyed> {
  bool isEqual(const NSRefPtr<NSObject>&) const override { return false; }
};

// A class whose name another source file of the host has, too, in an unnamed namespace of its own.
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
  EXPECT_EQ(&hostClassOfTexts(), &NSString::classObject());
  EXPECT_EQ(&hostClassOfSquares(), &Square::classObject());
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

TEST(NSObject, NamesakesInOtherSourceFilesAreOtherClasses) {
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
  EXPECT_EQ(polygon->sides(), 4) << "the subclass's class operation is used";
  EXPECT_EQ(square->sides(), 4) << "the initialiser is dispatched on the receiver";
  EXPECT_EQ(square->area(), 40);
  EXPECT_EQ(Shape::shapeWithSides(0), nullptr) << "an initialiser can say no";
}

TEST(NSObject, TheSubclassAtFaultIsNamed) {
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
  const auto list = NSMutableArray::arrayWithObjects({"a"});
  EXPECT_EQ(raised([&] { list->addObject(nil); }), invalid);
  EXPECT_EQ(raised([&] { list->replaceObjectAtIndex(0, nullptr); }), invalid);
  EXPECT_EQ(raised([&] { NSArray::arrayWithObjects({"a", nil}); }), invalid);
  EXPECT_TRUE(list->isEqual(NSArray::arrayWithObject("a")));
  const auto set = NSMutableSet::set();
  EXPECT_EQ(raised([&] { set->addObject(nil); }), invalid);
  const auto map = NSMutableDictionary::dictionary();
  EXPECT_EQ(raised([&] { map->setObject(nil, "key"); }), invalid);
  EXPECT_EQ(raised([&] { map->setObject("object", nil); }), invalid);
  EXPECT_EQ(set->count() + map->count(), 0U);
  EXPECT_FALSE(map->objectForKey(nullptr));
  NSRef<NSMutableArray> moved = list;
  const NSRef<NSMutableArray> taken = std::move(moved);
  EXPECT_EQ(raised([&] { moved->count(); }), invalid);
  EXPECT_EQ(raised([&] { NSRefPtr<NSArray> handle = moved; }), invalid);
  moved = taken;
  EXPECT_EQ(moved->count(), 1U);
}

TEST(NSObject, GrowableKindsAreHandedOutAsPlainAndCopied) {
  const auto list = NSMutableArray::array();
  const NSRef<NSArray> live = list;
  const NSRef<NSArray> taken = live->copy();
  list->addObject("x");
  EXPECT_EQ(live->count(), 1U);
  EXPECT_EQ(taken->count(), 0U);
  EXPECT_EQ(taken->copy(), taken) << "of a fixed object, another reference";
  EXPECT_NE(NSRefPtr<NSArray>(taken->mutableCopy()), NSRefPtr<NSArray>(taken));

  const NSRef<NSObject> growable = NSMutableString::stringWithString("a");
  EXPECT_FALSE(growable->copy()->isKindOfClass(NSMutableString::classObject()));
  EXPECT_TRUE(growable->mutableCopy()->isKindOfClass(NSMutableString::classObject()));
  EXPECT_EQ(raised([] { Link::alloc()->mutableCopy(); }), "NSInvalidArgumentException");
}

TEST(NSObject, AShortResultCostsOneAllocation) {
  EXPECT_EQ(allocationsOf([] { text("sixteen letters."); }), 1U);
  EXPECT_EQ(allocationsOf([] { NSMutableData::dataWithLength(100)->mutableBytes()[99] = std::byte{1}; }), 1U);
  EXPECT_EQ(allocationsOf([] {
              const auto text = NSMutableString::stringWithCapacity(3);
              text->appendCharacters(u"abc");
            }),
            1U);
}

TEST(NSObject, AChainOfAMillionIsLetGoOfInOneGo) {
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
  EXPECT_EQ(shape->itself(), shape) << "an object can hand out itself";
  EXPECT_TRUE(link->isEqual(link));
  EXPECT_FALSE(link->isEqual(Link::alloc()));
  EXPECT_FALSE(link->isEqual(nullptr));
}

TEST(NSObject, WhatIsKnownOfAnEqualityFollowsWhoDeclaresIt) {
  EXPECT_EQ(Link::alloc()->equality(), NSEquality::identity);
  EXPECT_EQ(Loose::alloc()->equality(), NSEquality::custom);
  EXPECT_EQ(Keyed::alloc()->equality(), NSEquality::hashed);
  EXPECT_EQ(LooselyKeyed::alloc()->equality(), NSEquality::custom);
  EXPECT_EQ(text("a")->mutableCopy()->equality(), NSEquality::hashed);
  EXPECT_EQ(NSArray::array()->equality(), NSEquality::custom);
}

TEST(NSObject, BlocksAreMadeOfAnythingCallable) {
  using Predicate = NSBlock<bool(int)>;
  const NSRefPtr<Predicate> positive = [](int value) { return value > 0; };
  EXPECT_TRUE((*positive)(1));
  EXPECT_EQ(positive->copy(), positive);
  EXPECT_EQ(NSRefPtr<Predicate>(std::function<bool(int)>()), nullptr);
  EXPECT_EQ(NSRefPtr<Predicate>(static_cast<bool (*)(int)>(nullptr)), nullptr);
  EXPECT_EQ(NSRefPtr<Predicate>(nullptr), nullptr);
  const auto list = NSMutableArray::arrayWithObjects({positive});
  EXPECT_EQ(NSDynamicCast<Predicate>(list->objectAtIndex(0)), positive);
  EXPECT_EQ(NSDynamicCast<NSBlock<void()>>(list->objectAtIndex(0)), nullptr);
}

TEST(NSObject, AnyCollectionIsWalkedThroughOneInterface) {
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

TEST(NSObject, AChangeInMidWalkRaises) {
  const auto list = NSMutableArray::arrayWithObjects({"a", "b"});
  const auto set = NSMutableSet::setWithObjects({"a", "b"});
  const auto map = NSMutableDictionary::dictionaryWithObjectsAndKeys({{"1", "a"}, {"2", "b"}});
  const auto walk = [](const NSFastEnumeration& collection, auto&& change) {
    return raised([&] {
      for (const NSRef<NSObject> element : collection) change(element);
    });
  };
  EXPECT_EQ(walk(*list, [&](NSObjectArg element) { list->removeObject(element); }), "NSGenericException");
  EXPECT_EQ(walk(*set, [&](NSObjectArg element) { set->removeObject(element); }), "NSGenericException");
  EXPECT_EQ(walk(*map, [&](NSObjectArg element) { map->removeObjectForKey(element); }), "NSGenericException");
  EXPECT_EQ(list->count() + set->count() + map->count(), 3U);
  const auto grow = [&](NSObjectArg) {
    if (list->count() == 1) list->addObjectsFromArray(list->copy());
  };
  EXPECT_EQ(walk(*list, grow), "NSGenericException");
  EXPECT_EQ(walk(*list, [&](NSObjectArg) { list->removeObjectAtIndex(0); }), "NSGenericException");
  EXPECT_EQ(walk(*set, [&](NSObjectArg element) { set->addObject(element); }), "nothing") << "no change";
}

TEST(NSObject, EveryThreadHasAnAssertionHandlerOfItsOwn) {
  const auto fail = [] { VXAdditions::vxfoundation_map(*NSArray::array(), nullptr); };
  std::string elsewhere;
  {
    const RecordedAssertions here;
    EXPECT_EQ(raised(fail), "nothing");
    std::thread([&] { elsewhere = raised(fail); }).join();
  }
  EXPECT_EQ(elsewhere, "NSInternalInconsistencyException");
  EXPECT_EQ(raised(fail), "NSInternalInconsistencyException");
}

TEST(NSObject, AreSharedBetweenThreads) {
  const NSRef<NSArray> shared = NSArray::arrayWithObjects({"a", "b"});
  const auto use = [shared] {
    for (int round = 0; round < 2000; ++round) {
      EXPECT_TRUE(NSRef<NSArray>(shared->copy())->containsObject("b"));
      EXPECT_EQ(Square::classObject().name(), "Square");
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) threads.emplace_back(use);
  for (std::thread& thread : threads) thread.join();
}
