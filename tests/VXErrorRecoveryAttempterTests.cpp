#include <Foundation/NSErrorPresenter.h>
#include <VXFoundation/VXErrorRecoveryAttempter.h>

#include <cstdlib>

#include "tests/support/RecordedAssertions.h"

namespace {

const NSRef<NSError> failure = NSError::errorWithDomain("domain", 3, nullptr);

struct Listener : NSObject::Subclass<Listener> {
  void didRecover(bool recovered, void* contextInfo) {
    heard += recovered ? "yes " : "no ";
    context = contextInfo;
  }
  void overhear(bool recovered, void*) const noexcept { heard += recovered ? "aye " : "nay "; }
  mutable std::string heard;
  void* context = nullptr;
};

// A user who always chooses the option with this title.
struct Picker : NSErrorPresenter {
  explicit Picker(std::string pickedTitle) : title(std::move(pickedTitle)) {}
  std::optional<std::size_t> choose(const NSError&, const NSArray& localizedOptions) override {
    const std::size_t index = localizedOptions.indexOfObject(text(title));
    return index == NSNotFound ? std::nullopt : std::optional(index);
  }
  std::string title;
};

class VXErrorRecovery : public testing::Test {
 protected:
  // Adds options whose titles say what their actions return.
  void addOptions(std::initializer_list<bool> results) {
    for (const bool result : results)
      attempter->addRecoveryOptionWithLocalizedTitle(text(result ? "yes" : "no"),
                                                     [result](const auto&) { return result; });
  }
  std::string add(NSStringArg title, const NSRefPtr<VXErrorRecoveryBlock>& block) {
    return raised([&] { attempter->addRecoveryOptionWithLocalizedTitle(title, block); });
  }
  std::string attempt(std::size_t index) {
    return raised([&] { attempter->attemptRecoveryFromError(failure, index, listener, selector, &context); });
  }

  const NSRef<VXErrorRecoveryAttempter> attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  const NSRefPtr<Listener> listener = Listener::alloc();
  void (Listener::*selector)(bool, void*) = &Listener::didRecover;
  int context = 0;
};

}  // namespace

TEST_F(VXErrorRecovery, OptionsKeepTheirOrderInASeparateArray) {
  const auto before = attempter->recoveryOptions();
  addOptions({true, false});
  EXPECT_EQ(before->count(), 0U);
  EXPECT_TRUE(attempter->recoveryOptions()->isEqual(NSArray::arrayWithObjects({"yes", "no"})));
  const auto shared = NSMutableArray::array();
  attempter->setTitles(shared);
  EXPECT_EQ(attempter->titles(), shared) << "the array itself, not a copy";
}

TEST_F(VXErrorRecovery, ActionsGetTheSameErrorWithAndWithoutADelegate) {
  addOptions({false});
  std::vector<NSError*> received;
  const NSRefPtr<VXErrorRecoveryBlock> action = [&](const auto& error) {
    return received.push_back(error.get()), true;
  };
  EXPECT_EQ(add("once", action) + add("again", action), "nothingnothing");
  EXPECT_FALSE(attempter->attemptRecoveryFromError(failure, 0));
  EXPECT_TRUE(attempter->attemptRecoveryFromError(failure, 2));
  attempter->attemptRecoveryFromError(failure, 1, NSRefPtr<Listener>(), selector, nullptr);
  attempter->attemptRecoveryFromError(failure, 1, nullptr, nullptr);
  attempter->attemptRecoveryFromError(failure, 1, nullptr, &Listener::didRecover, nullptr);
  EXPECT_EQ(received, std::vector(4, failure.get()));
}

TEST_F(VXErrorRecovery, DelegatesReceiveResultAndContext) {
  addOptions({true, false});
  EXPECT_EQ(attempt(0), "nothing");
  EXPECT_EQ(listener->context, &context);
  attempter->attemptRecoveryFromError(failure, 1, listener, selector, nullptr);
  EXPECT_EQ(listener->context, nullptr);
  const auto notify = [&](bool recovered, void* info) { listener->didRecover(recovered, info); };
  attempter->attemptRecoveryFromError(failure, 0, notify, &context);
  const NSRef<Listener> made = listener;
  attempter->attemptRecoveryFromError(failure, 0, made, selector, &context);
  attempter->attemptRecoveryFromError(failure, 1, listener, &Listener::overhear, &context);
  EXPECT_EQ(listener->heard, "yes no yes yes nay ");
}

TEST_F(VXErrorRecovery, AnActionIsCopiedWithItsState) {
  const NSRefPtr<VXErrorRecoveryBlock> odd = [calls = 0](const auto&) mutable { return ++calls % 2 == 1; };
  EXPECT_EQ(add("once", odd) + add("again", odd), "nothingnothing");
  EXPECT_TRUE((*odd)(failure));
  EXPECT_TRUE(attempter->attemptRecoveryFromError(failure, 0));
  EXPECT_TRUE(attempter->attemptRecoveryFromError(failure, 1));
  EXPECT_FALSE(attempter->attemptRecoveryFromError(failure, 0));
}

TEST_F(VXErrorRecovery, AnIndexWithoutAnActionRaisesAndNotifiesNobody) {
  addOptions({true});
  attempter->titles()->addObject("a title alone");
  EXPECT_EQ(attempt(1), "NSRangeException") << "the actions count, not the titles";
  attempter->blocks()->addObject(NSRefPtr<NSBlock<void()>>([] {}));
  EXPECT_EQ(attempt(1), "NSInvalidArgumentException");
  attempter->setBlocks(NSMutableArray::array());
  EXPECT_EQ(attempt(0), "NSRangeException");
  selector = nullptr;
  EXPECT_EQ(attempt(0), "NSInvalidArgumentException");
  EXPECT_EQ(listener->heard, "");
}

TEST_F(VXErrorRecovery, CancelNeverRecoversAndSharesOneBlock) {
  setenv("LC_ALL", "en_GB.UTF-8", 1);
  for (const char* language : {"en", "de", "xx"}) {
    setenv("LANGUAGE", language, 1);
    attempter->addCancelRecoveryOption();
    EXPECT_FALSE(attempter->attemptRecoveryFromError(failure, attempter->titles()->count() - 1));
    EXPECT_EQ(attempter->blocks()->lastObject(), attempter->blocks()->firstObject());
  }
  EXPECT_TRUE(attempter->titles()->isEqual(NSArray::arrayWithObjects({"Cancel", "Abbrechen", "Cancel"})));
}

TEST_F(VXErrorRecovery, TitleAndActionAreAsserted) {
  const std::string site =
      "VXErrorRecoveryAttempter addRecoveryOptionWithLocalizedTitle:recoveryBlock: VXErrorRecoveryAttempter:";
  const std::string noTitle = site + "45 Invalid parameter not satisfying: localizedTitle != nil";
  const std::string noAction = site + "46 Invalid parameter not satisfying: recoveryBlock != nil";
  EXPECT_EQ(add(nullptr, [](const auto&) { return true; }), "NSInternalInconsistencyException");
  EXPECT_EQ(add("title", nullptr), "NSInternalInconsistencyException");
  EXPECT_EQ(attempter->titles()->count(), 0U);
  RecordedAssertions assertions;
  EXPECT_EQ(add(nullptr, std::function<bool(const NSRefPtr<NSError>&)>()), "NSInvalidArgumentException");
  EXPECT_EQ(assertions.take(), (std::vector{noTitle, noAction}));
  EXPECT_EQ(add("title", nullptr), "NSInvalidArgumentException");
  EXPECT_EQ(assertions.take(), std::vector{noAction});
  EXPECT_EQ(attempter->titles()->count(), 1U) << "a title without its action";
  EXPECT_EQ(attempter->blocks()->count(), 0U);
}

TEST_F(VXErrorRecovery, PresentersCarryOutTheChosenOption) {
  addOptions({false, true});
  const auto userInfo = NSDictionary::dictionaryWithObjectsAndKeys(
      {{attempter, NSRecoveryAttempterErrorKey},
       {attempter->recoveryOptions(), NSLocalizedRecoveryOptionsErrorKey}});
  const auto presented = NSError::errorWithDomain("domain", 3, userInfo);
  EXPECT_TRUE(Picker("yes").presentError(presented));
  for (const char* title : {"no", "neither"}) EXPECT_FALSE(Picker(title).presentError(presented));
  EXPECT_FALSE(Picker("yes").presentError(failure));
}

TEST_F(VXErrorRecovery, FactoriesOfASubclassMakeTheSubclass) {
  struct Special : VXErrorRecoveryAttempter::Subclass<Special> {};
  struct Refusing : Special::Subclass<Refusing> {
    bool init() override { return false; }
  };
  EXPECT_EQ(NSRefPtr<Special>(Special::errorRecoveryAttempter())->isa().name(), "Special");
  EXPECT_FALSE(Refusing::errorRecoveryAttempter());
}

TEST_F(VXErrorRecovery, AHostsOverridesAreReached) {
  struct Overriding : VXErrorRecoveryAttempter::Subclass<Overriding> {
    void addRecoveryOptionWithLocalizedTitle(NSStringArg title,
                                             const NSRefPtr<VXErrorRecoveryBlock>& action) override {
      VXErrorRecoveryAttempter::addRecoveryOptionWithLocalizedTitle(
          NSString::stringWithFormat("%@!", title.get()), action);
    }
    void addCancelRecoveryOption() override {
      VXErrorRecoveryAttempter::addCancelRecoveryOption();
      VXErrorRecoveryAttempter::addCancelRecoveryOption();
    }
    using VXErrorRecoveryAttempter::attemptRecoveryFromError;
    bool attemptRecoveryFromError(const NSRefPtr<NSError>&, std::size_t) override { return true; }
  };
  const auto own = NSRef(Overriding::errorRecoveryAttempter());
  VXErrorRecoveryAttempter& plain = *own;
  setenv("LANGUAGE", "en", 1);
  plain.addCancelRecoveryOption();
  EXPECT_TRUE(own->recoveryOptions()->isEqual(NSArray::arrayWithObjects({"Cancel!", "Cancel!"})));
  plain.attemptRecoveryFromError(failure, 1, listener, selector, nullptr);
  EXPECT_EQ(listener->heard, "no ") << "the delegate form calls the action itself";
}
