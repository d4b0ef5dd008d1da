#include <atomic>
#include <thread>

#include "Bytes.h"
#include "RecordedAssertions.h"
#include "host/CountedAllocations.h"
#include "host/Host.h"

namespace {

// Equality of contents with the hash of identity, and with a hash that agrees.
struct Loose : NSObject::Subclass<Loose> {
  bool isEqual(const RefPtr<NSObject>&) const override { return true; }
};
struct Keyed : NSObject::Subclass<Keyed> {
  using HashAgreesWithEquality = Keyed;
  bool isEqual(const RefPtr<NSObject>&) const override { return true; }
  std::size_t hash() const override { return 7; }
};
struct LooselyKeyed : Keyed::Subclass<LooselyKeyed> {
  bool isEqual(const RefPtr<NSObject>&) const override { return false; }
};

}  // namespace

TEST(Objects, HostAndLibrarySeeOneClassObject) {
  EXPECT_EQ(&hostClassOfTexts(), &NSString::classObject());
  EXPECT_EQ(&hostClassOfSquares(), &Square::classObject());
  const Ref<NSObject> square = hostMakesASquare();
  EXPECT_EQ(&square->isa(), &Square::classObject());
  EXPECT_TRUE(square->isKindOfClass(Polygon::classObject()));
  EXPECT_FALSE(square->isKindOfClass(Link::classObject()));
  EXPECT_TRUE(dynamicCast<Shape>(square));
  EXPECT_FALSE(dynamicCast<NSString>(square));
  EXPECT_FALSE(dynamicCast<Shape>(RefPtr<NSObject>()));
}

TEST(Objects, ClassesAreObjectsWithANameAndASuperclass) {
  Class& square = Square::classObject();
  EXPECT_EQ(square.name(), "Square");
  EXPECT_EQ(square.superclass(), &Polygon::classObject());
  EXPECT_EQ(NSObject::classObject().superclass(), nullptr);
  EXPECT_EQ(&square.isa(), &Class::classObject());
  EXPECT_TRUE(square.isKindOfClass(NSObject::classObject()));
  EXPECT_TRUE(NSMutableString::classObject().isSubclassOfClass(NSString::classObject()));
  struct Local : NSObject::Subclass<Local> {};
  EXPECT_EQ(Local::classObject().name(), "Local");
}

TEST(Objects, ClassOperationsMakeTheReceivingClass) {
  const RefPtr<Shape> shape = Shape::shapeWithSides(3);
  const RefPtr<Polygon> polygon = Polygon::shapeWithSides(3);
  const RefPtr<Square> square = Square::shapeWithSides(3);
  EXPECT_EQ(shape->sides(), 3);
  EXPECT_EQ(polygon->sides(), 4) << "the subclass's class operation is used";
  EXPECT_EQ(square->sides(), 4) << "the initialiser is dispatched on the receiver";
  EXPECT_EQ(square->area(), 40);
  EXPECT_EQ(Shape::shapeWithSides(0), nullptr) << "an initialiser can say no";
}

TEST(Objects, TheSubclassAtFaultIsNamed) {
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
}

TEST(Objects, NilRaisesAndChangesNothing) {
  const std::string invalid = "NSInvalidArgumentException";
  const RefPtr<NSString> nil;
  EXPECT_EQ(raised([&] { const Ref<NSString> text = nil; }), invalid);
  EXPECT_EQ(raised([&] { const Ref<NSObject> object = nullptr; }), invalid);
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
}

TEST(Objects, GrowableKindsAreHandedOutAsPlainAndCopied) {
  const auto list = NSMutableArray::array();
  const Ref<NSArray> live = list;
  const Ref<NSArray> taken = live->copy();
  list->addObject("x");
  EXPECT_EQ(live->count(), 1U);
  EXPECT_EQ(taken->count(), 0U);
  EXPECT_EQ(taken->copy(), taken) << "of a fixed object, another reference";
  EXPECT_NE(RefPtr<NSArray>(taken->mutableCopy()), RefPtr<NSArray>(taken));

  const Ref<NSObject> growable = NSMutableString::stringWithString("a");
  EXPECT_FALSE(growable->copy()->isKindOfClass(NSMutableString::classObject()));
  EXPECT_TRUE(growable->mutableCopy()->isKindOfClass(NSMutableString::classObject()));
  EXPECT_EQ(raised([] { Link::alloc()->mutableCopy(); }), "NSInvalidArgumentException");
}

TEST(Objects, AShortResultCostsOneAllocation) {
  EXPECT_EQ(allocationsOf([] { NSString::stringWithUTF8String("sixteen letters."); }), 1U);
  EXPECT_EQ(allocationsOf([] { NSMutableData::dataWithLength(100)->mutableBytes()[99] = std::byte{1}; }), 1U);
  EXPECT_EQ(allocationsOf([] {
              const auto text = NSMutableString::stringWithCapacity(3);
              text->appendCharacters(u"abc");
            }),
            1U);
}

TEST(Objects, AChainOfAMillionIsLetGoOfInOneGo) {
  static std::atomic<int> alive;
  struct Counted : Link::Subclass<Counted> {
    Counted() { ++alive; }
    ~Counted() override { --alive; }
  };
  RefPtr<Link> chain;
  for (int i = 0; i < 1'000'000; ++i) {
    const Ref<Link> link = Counted::alloc();
    link->next = std::exchange(chain, link);
  }
  EXPECT_EQ(alive, 1'000'000);
  chain = nullptr;
  EXPECT_EQ(alive, 0);

  Ref<NSArray> nested = NSArray::array();
  for (int i = 0; i < 1'000'000; ++i) nested = NSArray::arrayWithObject(nested);
}

TEST(Objects, HandlesAreOneWordAndCompareByIdentity) {
  static_assert(sizeof(Ref<Link>) == sizeof(void*) && sizeof(RefPtr<Link>) == sizeof(void*));
  const auto link = Link::alloc();
  Link& same = *link;
  EXPECT_EQ(Ref<NSObject>(same), link);
  const auto shape = Ref(Shape::shapeWithSides(3));
  EXPECT_EQ(shape->itself(), shape) << "an object can hand out itself";
  EXPECT_TRUE(link->isEqual(link));
  EXPECT_FALSE(link->isEqual(Link::alloc()));
  EXPECT_FALSE(link->isEqual(nullptr));
}

TEST(Objects, WhatIsKnownOfAnEqualityFollowsWhoDeclaresIt) {
  EXPECT_EQ(Link::alloc()->equality(), NSEquality::identity);
  EXPECT_EQ(Loose::alloc()->equality(), NSEquality::custom);
  EXPECT_EQ(Keyed::alloc()->equality(), NSEquality::hashed);
  EXPECT_EQ(LooselyKeyed::alloc()->equality(), NSEquality::custom);
  EXPECT_EQ(text("a")->mutableCopy()->equality(), NSEquality::hashed);
  EXPECT_EQ(NSArray::array()->equality(), NSEquality::custom);
}

TEST(Objects, BlocksAreMadeOfAnythingCallable) {
  using Predicate = NSBlock<bool(int)>;
  const RefPtr<Predicate> positive = [](int value) { return value > 0; };
  EXPECT_TRUE((*positive)(1));
  EXPECT_EQ(positive->copy(), positive);
  EXPECT_EQ(RefPtr<Predicate>(std::function<bool(int)>()), nullptr);
  EXPECT_EQ(RefPtr<Predicate>(static_cast<bool (*)(int)>(nullptr)), nullptr);
  EXPECT_EQ(RefPtr<Predicate>(nullptr), nullptr);
  const auto list = NSMutableArray::arrayWithObjects({positive});
  EXPECT_EQ(dynamicCast<Predicate>(list->objectAtIndex(0)), positive);
  EXPECT_EQ(dynamicCast<NSBlock<void()>>(list->objectAtIndex(0)), nullptr);
}

TEST(Objects, AnyCollectionIsWalkedThroughOneInterface) {
  const auto walked = [](const NSFastEnumeration& collection) {
    std::string elements;
    for (const Ref<NSObject> element : collection) elements += *bytesOf(element->description());
    return elements;
  };
  EXPECT_EQ(walked(*Countdown::alloc()), "321");
  EXPECT_EQ(walked(*NSArray::arrayWithObjects({"a", "b", "a"})), "aba");
  EXPECT_EQ(walked(*NSSet::setWithObjects({"b", "a", "b"})), "ba");
  EXPECT_EQ(walked(*NSDictionary::dictionaryWithObjectsAndKeys({{"1", "z"}, {"2", "y"}, {"3", "z"}})), "zy");
}

TEST(Objects, AChangeInMidWalkRaises) {
  const auto list = NSMutableArray::arrayWithObjects({"a", "b"});
  const auto set = NSMutableSet::setWithObjects({"a", "b"});
  const auto map = NSMutableDictionary::dictionaryWithObjectsAndKeys({{"1", "a"}, {"2", "b"}});
  const auto walk = [](const NSFastEnumeration& collection, auto&& change) {
    return raised([&] {
      for (const Ref<NSObject> element : collection) change(element);
    });
  };
  EXPECT_EQ(walk(*list, [&](Object element) { list->removeObject(element); }), "NSGenericException");
  EXPECT_EQ(walk(*set, [&](Object element) { set->removeObject(element); }), "NSGenericException");
  EXPECT_EQ(walk(*map, [&](Object element) { map->removeObjectForKey(element); }), "NSGenericException");
  EXPECT_EQ(list->count() + set->count() + map->count(), 3U);
  const auto grow = [&](Object) {
    if (list->count() == 1) list->addObjectsFromArray(list->copy());
  };
  EXPECT_EQ(walk(*list, grow), "NSGenericException");
  EXPECT_EQ(walk(*list, [&](Object) { list->removeObjectAtIndex(0); }), "NSGenericException");
  EXPECT_EQ(walk(*set, [&](Object element) { set->addObject(element); }), "nothing") << "no change";
}

TEST(Objects, EveryThreadHasAnAssertionHandlerOfItsOwn) {
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

TEST(Objects, AreSharedBetweenThreads) {
  const Ref<NSArray> shared = NSArray::arrayWithObjects({"a", "b"});
  const auto use = [shared] {
    for (int round = 0; round < 2000; ++round) {
      EXPECT_TRUE(Ref<NSArray>(shared->copy())->containsObject("b"));
      EXPECT_EQ(Square::classObject().name(), "Square");
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) threads.emplace_back(use);
  for (std::thread& thread : threads) thread.join();
}
