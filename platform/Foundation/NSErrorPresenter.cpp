#include <Foundation/NSErrorPresenter.h>

#include <Foundation/NSErrorRecoveryAttempting.h>

bool NSErrorPresenter::presentError(const NSRef<NSError>& error) {
  const NSDictionary& info = *error->userInfo();
  const auto options = NSDynamicCast<NSArray>(info.objectForKey(NSLocalizedRecoveryOptionsErrorKey));
  const std::optional<std::size_t> chosen = choose(*error, options ? *options : *NSArray::array());
  const NSRefPtr<NSObject> attempter = info.objectForKey(NSRecoveryAttempterErrorKey);
  auto* attempting = dynamic_cast<NSErrorRecoveryAttempting*>(attempter.get());
  return chosen && attempting && attempting->attemptRecoveryFromError(error, *chosen);
}
