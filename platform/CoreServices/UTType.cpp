#include <CoreServices/UTType.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include <CoreServices/Internal/UTTypeDeclarations.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSPropertyList.h>
#include <Foundation/NSSet.h>

const NSRef<NSString>& UTTypeErrorDomain = NSConstantString("UTTypeErrorDomain");

namespace {

struct Snapshot {
  UTTypeDeclarations declarations;
  NSRef<NSDictionary> supertypes;
};

// Queries read the current snapshot without a lock. A replaced snapshot is kept, because a query may still be
// using it; there are only as many as there are files that declare something new.
class DeclaredTypes {
 public:
  // Never destroyed: a query may come after this library's static destructors have run.
  static DeclaredTypes& shared() {
    static DeclaredTypes& only = *new DeclaredTypes;
    return only;
  }

  const NSDictionary& supertypes() const { return *current_.load(std::memory_order_acquire)->supertypes; }

  bool declare(const NSDictionary& information, NSRefPtr<NSError>* error) {
    const std::lock_guard lock(mutex_);
    const UTTypeDeclarations& declared = snapshots_.back()->declarations;
    UTTypeDeclarations extended = declared;
    if (!UTAddExportedTypes(information, extended, error)) return false;
    return extended == declared || replace(std::move(extended), error);
  }

 private:
  DeclaredTypes() {
    NSRefPtr<NSError> error;
    replace(UTBuiltInTypes(), nullptr);
    if (!declare(*NSBundle::mainBundle()->infoDictionary(), &error))
      NSLog("The program's type declarations are refused: %@", error->localizedDescription());
  }

  bool replace(UTTypeDeclarations declarations, NSRefPtr<NSError>* error) {
    const NSRefPtr<NSDictionary> supertypes = UTSupertypes(declarations, error);
    if (!supertypes) return false;
    snapshots_.push_back(std::make_unique<Snapshot>(Snapshot{std::move(declarations), supertypes}));
    current_.store(snapshots_.back().get(), std::memory_order_release);
    return true;
  }

  std::mutex mutex_;
  std::vector<std::unique_ptr<const Snapshot>> snapshots_;
  std::atomic<const Snapshot*> current_ = nullptr;
};

}  // namespace

bool UTTypeConformsTo(NSStringArg type, NSStringArg otherType) {
  const auto sought = type.borrow();
  const auto other = otherType.borrow();
  if (!sought || !other) return false;
  if (sought->isEqualToString(*other)) return true;
  const NSRefPtr<NSObject> supertypes = DeclaredTypes::shared().supertypes().objectForKey(*sought);
  return supertypes && static_cast<const NSSet&>(*supertypes).containsObject(*other);
}

bool UTTypeDeclareTypesInFile(NSStringArg path, NSRefPtr<NSError>* error) {
  const auto text = path.borrow();
  const auto name = text ? text->UTF8String() : std::nullopt;
  const auto information =
      name ? NSDynamicCast<NSDictionary>(NSPropertyListWithContentsOfFile(*name)) : nullptr;
  if (!information) return UTRefuse(error, UTTypeErrorUnreadable, "the information file cannot be read");
  return DeclaredTypes::shared().declare(*information, error);
}
