#include <Security/DesktopStore/SecDesktopStore.h>

#include <algorithm>

#include <Security/DesktopStore/SecDesktopLock.h>
#include <Security/DesktopStore/SecDesktopTransaction.h>

namespace {

/// Failures after which the connection is as good as before.
constexpr OSStatus harmless[] = {errSecSuccess,
                                 errSecParam,
                                 errSecDuplicateItem,
                                 errSecItemNotFound,
                                 errSecReadOnly,
                                 errSecDataTooLarge,
                                 errSecBusy,
                                 errSecUserCanceled,
                                 errSecInteractionRequired,
                                 errSecInteractionNotAllowed};

std::string describePlace(SecDesktopSession& session) {
  const std::string program = session.place().program;
  return "the desktop's " + (program.empty() ? "credential service" : program) + ", collection " +
         session.collection().label();
}

std::string describeProtection(SecDesktopSession& session) {
  const std::string state = session.collection().isLocked() ? "locked" : "unlocked";
  return "the desktop, " + state + "; attributes are readable there" +
         (SecDesktopLock::isAllowed(session.bus()) ? "" : "; the bus allows no lock between programs");
}

}  // namespace

/// Runs `action` with exclusive use of the session, and drops the connection where it may be broken.
template <class Action>
OSStatus SecDesktopStore::alone(Action&& action) {
  const std::lock_guard lock(mutex_);
  const OSStatus status = secStatusOf([&] { action(session()); });
  const bool isHarmless = std::find(std::begin(harmless), std::end(harmless), status) != std::end(harmless);
  if (!isHarmless) session_.reset();
  return status;
}

/// Returns the connection, opened anew in a forked process and after a failure. A connection that has come
/// to lead to another store fails.
SecDesktopSession& SecDesktopStore::session() {
  if (session_ && session_->isOurs()) {
    session_->requireService();
    return *session_;
  }
  session_ = std::make_unique<SecDesktopSession>(options_);
  if (!place_) place_ = session_->place();
  secRequire(session_->place() == *place_, errSecServiceReplaced);
  return *session_;
}

OSStatus SecDesktopStore::transact(SecStorage::Access access, const SecStorage::Work& work) {
  return alone([&](SecDesktopSession& session) {
    session.unlock();
    std::optional<SecDesktopLock> lock;
    if (access == SecStorage::Access::change) lock.emplace(session.bus(), waitLimit_);
    SecDesktopTransaction transaction(session, access);
    work(transaction);
    transaction.commit();
  });
}

OSStatus SecDesktopStore::copyInfo(SecStorageInfo& info) {
  return alone([&](SecDesktopSession& session) {
    info = {describePlace(session), describeProtection(session),
            session.items().count(secSearchAttributes())};
  });
}

void SecDesktopStore::setWaitLimit(std::chrono::milliseconds limit) {
  const std::lock_guard lock(mutex_);
  waitLimit_ = limit;
}
