#include <Foundation/NSErrorPresenter.h>

#include <Foundation/NSErrorRecoveryAttempting.h>

bool NSErrorPresenter::presentError(const Ref<NSError>& error) {
  const NSDictionary& info = *error->userInfo();
  const auto options = dynamicCast<NSArray>(info.objectForKey(NSLocalizedRecoveryOptionsErrorKey));
  const std::optional<std::size_t> chosen = choose(*error, options ? *options : *NSArray::array());
  const RefPtr<NSObject> attempter = info.objectForKey(NSRecoveryAttempterErrorKey);
  auto* attempting = dynamic_cast<NSErrorRecoveryAttempting*>(attempter.get());
  return chosen && attempting && attempting->attemptRecoveryFromError(error, *chosen);
}
