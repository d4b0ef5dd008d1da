#include <CoreServices/Internal/UTTypeRegistry.h>

#include <time.h>

#include <Foundation/NSBundle.h>
#include <Foundation/NSLog.h>

namespace {

constexpr std::int64_t secondsBetweenLooks = 1;

// Nanoseconds, in steps of a few milliseconds, from a clock that is cheap to read.
std::int64_t now() {
  timespec time{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

// Never destroyed: a query may come after this library's static destructors have run.
UTTypeRegistry& UTTypeRegistry::shared() {
  static UTTypeRegistry& only = *new UTTypeRegistry;
  return only;
}

UTTypeRegistry::UTTypeRegistry() : declarations_(UTBuiltInTypes()), folders_(UTMIMEFolders()) {
  NSRefPtr<NSError> error;
  declared_.publish(UTTypeIndex::make(declarations_, UTMIMEDatabase(), nullptr));
  if (!declare(*NSBundle::mainBundle()->infoDictionary(), &error))
    NSLog("The program's type declarations are refused: %@", error->localizedDescription());
}

UTTypeRegistry::Reading UTTypeRegistry::allTypes() {
  if (isTimeToLook() || !all_) look();
  return all_.read();
}

bool UTTypeRegistry::declare(const NSDictionary& information, NSRefPtr<NSError>* error) {
  const std::lock_guard lock(mutex_);
  UTTypeDeclarations extended = declarations_;
  if (!UTAddExportedTypes(information, extended, error)) return false;
  if (extended.all().size() == declarations_.all().size()) return true;
  auto index = UTTypeIndex::make(extended, UTMIMEDatabase(), error);
  if (!index) return false;
  declarations_ = std::move(extended);
  declared_.publish(std::move(index));
  if (all_) publishAll();
  return true;
}

// One thread of those that come at the same time looks; the others go on with what there is.
bool UTTypeRegistry::isTimeToLook() {
  const std::int64_t time = now();
  std::int64_t next = nextLook_.load(std::memory_order_relaxed);
  return time >= next && nextLook_.compare_exchange_strong(next, time + secondsBetweenLooks * 1'000'000'000);
}

void UTTypeRegistry::look() {
  const std::lock_guard lock(mutex_);
  auto states = UTMIMEFileStates(folders_);
  if (all_ && states == states_) return;
  states_ = std::move(states);
  publishAll();
}

// What declarations say was found valid before.
void UTTypeRegistry::publishAll() {
  all_.publish(UTTypeIndex::make(declarations_, UTMIMEDatabase(UTReadMIMEFiles(folders_)), nullptr));
}
