#include <cstdlib>

#include "RecordedAssertions.h"

namespace {

Ref<NSError> error(RefPtr<NSDictionary> userInfo = nullptr) {
  return NSError::errorWithDomain("domain", 3, std::move(userInfo));
}

Ref<VXErrorRecoveryAttempter> attempterWith(std::initializer_list<bool> results) {
  const Ref<VXErrorRecoveryAttempter> attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  for (const bool result : results)
    attempter->addRecoveryOptionWithLocalizedTitle(text(result ? "yes" : "no"),
                                                   [result](const RefPtr<NSError>&) { return result; });
  return attempter;
}

struct Listener : NSObject::Subclass<Listener> {
  void didRecover(bool recovered, void* contextInfo) {
    heard += recovered ? "yes " : "no ";
    context = contextInfo;
  }
  std::string heard;
  void* context = nullptr;
};

// A user who always picks the option of the title.
struct Picker : NSErrorPresenter {
  explicit Picker(std::string pickedTitle) : title(std::move(pickedTitle)) {}
  std::optional<std::size_t> choose(const NSError&, const NSArray& localizedOptions) override {
    const std::size_t index = localizedOptions.indexOfObject(text(title));
    if (index == NSNotFound) return std::nullopt;
    return index;
  }
  std::string title;
};

}  // namespace

TEST(VXErrorRecoveryAttempter, OptionsKeepTheirOrderInAListOfTheirOwn) {
  const auto attempter = attempterWith({});
  const auto before = attempter->recoveryOptions();
  attempter->addRecoveryOptionWithLocalizedTitle("first", [](const RefPtr<NSError>&) { return true; });
  attempter->addRecoveryOptionWithLocalizedTitle("second", [](const RefPtr<NSError>&) { return true; });
  EXPECT_EQ(before->count(), 0U);
  EXPECT_TRUE(attempter->recoveryOptions()->isEqual(NSArray::arrayWithObjects({"first", "second"})));
  const auto shared = NSMutableArray::arrayWithObjects({"other"});
  attempter->setTitles(shared);
  shared->addObject("later");
  EXPECT_EQ(attempter->titles(), shared) << "the list itself, not a copy";
}

TEST(VXErrorRecoveryAttempter, TheActionAtTheIndexGetsTheVeryError) {
  const auto attempter = attempterWith({false});
  const auto given = error();
  RefPtr<NSError> got;
  const RefPtr<VXErrorRecoveryBlock> action = [&got](const RefPtr<NSError>& told) {
    got = told;
    return true;
  };
  attempter->addRecoveryOptionWithLocalizedTitle("once", action);
  attempter->addRecoveryOptionWithLocalizedTitle("again", action);
  EXPECT_FALSE(attempter->attemptRecoveryFromError(given, 0));
  EXPECT_FALSE(got);
  EXPECT_TRUE(attempter->attemptRecoveryFromError(given, 2));
  EXPECT_EQ(got, given);
}

TEST(VXErrorRecoveryAttempter, TheDelegateHearsResultAndContext) {
  const auto attempter = attempterWith({true, false});
  const RefPtr<Listener> listener = Listener::alloc();
  int context = 0;
  attempter->attemptRecoveryFromError(error(), 0, listener, &Listener::didRecover, &context);
  EXPECT_EQ(listener->context, &context);
  attempter->attemptRecoveryFromError(error(), 1, listener, &Listener::didRecover, nullptr);
  EXPECT_EQ(listener->context, nullptr);
  attempter->attemptRecoveryFromError(
      error(), 0, [&](bool recovered, void* told) { listener->didRecover(recovered, told); }, &context);
  EXPECT_EQ(listener->heard, "yes no yes ");
}

TEST(VXErrorRecoveryAttempter, WithoutADelegateTheActionStillRuns) {
  const auto attempter = attempterWith({});
  int runs = 0;
  attempter->addRecoveryOptionWithLocalizedTitle("count", [&](const RefPtr<NSError>&) { return ++runs > 0; });
  attempter->attemptRecoveryFromError(error(), 0, RefPtr<Listener>(), &Listener::didRecover, nullptr);
  attempter->attemptRecoveryFromError(error(), 0, nullptr, nullptr);
  EXPECT_EQ(runs, 2);
  void (Listener::*const nil)(bool, void*) = nullptr;
  EXPECT_EQ(raised([&] {
              attempter->attemptRecoveryFromError(error(), 0, RefPtr<Listener>(Listener::alloc()), nil,
                                                  nullptr);
            }),
            "NSInvalidArgumentException");
  EXPECT_EQ(runs, 2);
}

TEST(VXErrorRecoveryAttempter, AnIndexWithoutAnActionRaisesAndTellsNobody) {
  const auto attempter = attempterWith({true});
  const RefPtr<Listener> listener = Listener::alloc();
  const auto attempt = [&](std::size_t index) {
    return raised([&] {
      attempter->attemptRecoveryFromError(error(), index, listener, &Listener::didRecover, nullptr);
    });
  };
  EXPECT_EQ(attempt(1), "NSRangeException");
  attempter->titles()->addObject("a title alone");
  EXPECT_EQ(attempt(1), "NSRangeException") << "the actions count, not the titles";
  attempter->blocks()->addObject("no action");
  EXPECT_EQ(attempt(1), "NSInvalidArgumentException");
  EXPECT_EQ(listener->heard, "");
  attempter->setBlocks(NSMutableArray::array());
  EXPECT_EQ(attempt(0), "NSRangeException");
}

TEST(VXErrorRecoveryAttempter, CancelNeverRecoversAndIsOneBlock) {
  const auto attempter = attempterWith({true, true});
  for (const auto& [language, title] : {std::pair{"en", "Cancel"}, {"de", "Abbrechen"}, {"xx", "Cancel"}}) {
    setenv("LC_ALL", "en_GB.UTF-8", 1);
    setenv("LANGUAGE", language, 1);
    attempter->addCancelRecoveryOption();
    EXPECT_EQ(static_cast<std::string>(*dynamicCast<NSString>(attempter->titles()->lastObject())), title);
  }
  const RefPtr<Listener> listener = Listener::alloc();
  attempter->attemptRecoveryFromError(error(), 2, listener, &Listener::didRecover, listener.get());
  EXPECT_EQ(listener->heard, "no ");
  EXPECT_EQ(listener->context, listener.get());
  const auto another = attempterWith({});
  another->addCancelRecoveryOption();
  EXPECT_EQ(another->blocks()->firstObject(), attempter->blocks()->lastObject());
}

TEST(VXErrorRecoveryAttempter, TitleAndActionAreAsserted) {
  const auto attempter = attempterWith({});
  const std::string site =
      "VXErrorRecoveryAttempter addRecoveryOptionWithLocalizedTitle:recoveryBlock: VXErrorRecoveryAttempter:";
  const std::string noTitle = site + "45 Invalid parameter not satisfying: localizedTitle != nil";
  const std::string noAction = site + "46 Invalid parameter not satisfying: recoveryBlock != nil";
  const RefPtr<VXErrorRecoveryBlock> action = [](const RefPtr<NSError>&) { return true; };
  const auto add = [&](Text title, const RefPtr<VXErrorRecoveryBlock>& block) {
    return raised([&] { attempter->addRecoveryOptionWithLocalizedTitle(title, block); });
  };
  EXPECT_EQ(add(nullptr, action), "NSInternalInconsistencyException");
  EXPECT_EQ(add("title", nullptr), "NSInternalInconsistencyException");
  EXPECT_EQ(attempter->titles()->count() + attempter->blocks()->count(), 0U);
  RecordedAssertions assertions;
  EXPECT_EQ(add(nullptr, std::function<bool(const RefPtr<NSError>&)>()), "NSInvalidArgumentException");
  EXPECT_EQ(assertions.take(), (std::vector{noTitle, noAction}));
  EXPECT_EQ(attempter->titles()->count(), 0U);
  EXPECT_EQ(add("title", nullptr), "NSInvalidArgumentException");
  EXPECT_EQ(assertions.take(), std::vector{noAction});
  EXPECT_EQ(attempter->titles()->count(), 1U) << "a title without its action";
  EXPECT_EQ(attempter->blocks()->count(), 0U);
}

TEST(VXErrorRecoveryAttempter, APresenterHasTheChosenOptionCarriedOut) {
  const auto attempter = attempterWith({false, true});
  const auto presented = error(NSDictionary::dictionaryWithObjectsAndKeys(
      {{attempter, NSRecoveryAttempterErrorKey},
       {attempter->recoveryOptions(), NSLocalizedRecoveryOptionsErrorKey}}));
  EXPECT_TRUE(Picker("yes").presentError(presented));
  EXPECT_FALSE(Picker("no").presentError(presented));
  EXPECT_FALSE(Picker("neither").presentError(presented));
  EXPECT_FALSE(Picker("yes").presentError(error()));
}

TEST(VXErrorRecoveryAttempter, AHostsSubclassMakesItsOwn) {
  struct Refusing : VXErrorRecoveryAttempter::Subclass<Refusing> {
    bool init() override { return false; }
  };
  struct Special : VXErrorRecoveryAttempter::Subclass<Special> {};
  const RefPtr<Special> special = Special::errorRecoveryAttempter();
  EXPECT_EQ(special->isa().name(), "Special");
  EXPECT_FALSE(Refusing::errorRecoveryAttempter());
}
