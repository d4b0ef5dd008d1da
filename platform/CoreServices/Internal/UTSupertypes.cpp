#include <unordered_map>
#include <vector>

#include <CoreServices/Internal/UTTypeDeclarations.h>
#include <Foundation/NSSet.h>

namespace {

constexpr std::size_t maximumPairs = 100'000;

using Declaration = UTTypeDeclarations::value_type;

NSRef<NSString> stringFrom(const std::u16string& identifier) {
  return NSString::stringWithCharacters(identifier);
}

// Sorts the types so that each follows those that it conforms to. Depth first with an explicit stack, because
// a host's declarations may be chained to any depth.
class Order {
 public:
  explicit Order(const UTTypeDeclarations& declarations) : declarations_(declarations) {}

  /// Returns whether there is such an order; if not, the error names a type in a cycle.
  bool find(NSRefPtr<NSError>* error) {
    for (const Declaration& each : declarations_) {
      enter(each);
      while (!path_.empty())
        if (!advance(error)) return false;
    }
    return true;
  }

  const std::vector<const Declaration*>& types() const { return types_; }

 private:
  enum class State { unseen, onPath, placed };
  struct Step {
    const Declaration* type;
    std::set<std::u16string>::const_iterator next;
  };

  void enter(const Declaration& type) {
    State& state = states_[&type];
    if (state != State::unseen) return;
    state = State::onPath;
    path_.push_back({&type, type.second.begin()});
  }

  bool advance(NSRefPtr<NSError>* error) {
    Step& step = path_.back();
    if (step.next == step.type->second.end()) {
      states_[step.type] = State::placed;
      types_.push_back(step.type);
      path_.pop_back();
      return true;
    }
    const auto supertype = declarations_.find(*step.next++);
    if (supertype == declarations_.end()) return true;
    if (states_[&*supertype] == State::onPath)
      return UTRefuse(error, UTTypeErrorCycle,
                      NSString::stringWithFormat("%@ conforms to a type that conforms to it",
                                                 stringFrom(supertype->first)));
    enter(*supertype);
    return true;
  }

  const UTTypeDeclarations& declarations_;
  std::unordered_map<const Declaration*, State> states_;
  std::vector<Step> path_;
  std::vector<const Declaration*> types_;
};

NSRef<NSSet> supertypesOf(const Declaration& type, const NSDictionary& known) {
  const NSRef<NSMutableSet> all = NSMutableSet::setWithObjects({stringFrom(type.first)});
  for (const std::u16string& each : type.second) {
    const NSRef<NSString> supertype = stringFrom(each);
    all->addObject(supertype);
    if (const auto inherited = NSDynamicCast<NSSet>(known.objectForKey(supertype)))
      for (const NSRef<NSObject> further : *inherited) all->addObject(further);
  }
  return all->copy();
}

}  // namespace

NSRefPtr<NSDictionary> UTSupertypes(const UTTypeDeclarations& declarations, NSRefPtr<NSError>* error) {
  Order order(declarations);
  if (!order.find(error)) return nullptr;
  const NSRef<NSMutableDictionary> supertypes = NSMutableDictionary::dictionary();
  std::size_t pairs = 0;
  for (const Declaration* type : order.types()) {
    const NSRef<NSSet> ofType = supertypesOf(*type, *supertypes);
    supertypes->setObject(ofType, stringFrom(type->first));
    pairs += ofType->count();
    if (pairs > maximumPairs) {
      UTRefuse(error, UTTypeErrorTooMany, "the declared types conform to too many others");
      return nullptr;
    }
  }
  return supertypes->copy();
}
