#include <algorithm>

#include <CoreServices/Internal/UTTypeIndex.h>

namespace {

// Sorts the types so that each follows those that it conforms to. Depth first with an explicit stack, because
// a host's declarations may be chained to any depth.
class Order {
 public:
  explicit Order(const std::vector<UTTypeNumbers>& parents)
      : parents_(parents), states_(parents.size(), State::unseen) {}

  /// Returns whether there is such an order; if not, `cycle` is a type in a cycle.
  bool find() {
    for (UTTypeNumber each = 0; each < parents_.size(); ++each) {
      enter(each);
      while (!path_.empty())
        if (!advance()) return false;
    }
    return true;
  }

  const UTTypeNumbers& types() const { return types_; }
  UTTypeNumber cycle() const { return cycle_; }

 private:
  enum class State : char { unseen, onPath, placed };
  struct Step {
    UTTypeNumber type;
    std::size_t next;
  };

  void enter(UTTypeNumber type) {
    if (states_[type] != State::unseen) return;
    states_[type] = State::onPath;
    path_.push_back({type, 0});
  }

  bool advance() {
    Step& step = path_.back();
    if (step.next == parents_[step.type].size()) {
      states_[step.type] = State::placed;
      types_.push_back(step.type);
      path_.pop_back();
      return true;
    }
    const UTTypeNumber parent = parents_[step.type][step.next++];
    cycle_ = parent;
    if (states_[parent] == State::onPath) return false;
    enter(parent);
    return true;
  }

  const std::vector<UTTypeNumbers>& parents_;
  std::vector<State> states_;
  std::vector<Step> path_;
  UTTypeNumbers types_;
  UTTypeNumber cycle_ = 0;
};

}  // namespace

void UTSort(UTTypeNumbers& numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

bool UTFindSupertypes(const std::vector<UTTypeNumbers>& parents, std::vector<UTIndexedType>& types,
                      NSRefPtr<NSError>* error) {
  Order order(parents);
  if (!order.find())
    return UTRefuse(
        error, UTTypeErrorCycle,
        NSString::stringWithFormat("%@ conforms to a type that conforms to it",
                                   NSString::stringWithUTF8String(types[order.cycle()].identifier)));
  std::size_t pairs = 0;
  for (const UTTypeNumber type : order.types()) {
    UTTypeNumbers& supertypes = types[type].supertypes;
    supertypes = {type};
    for (const UTTypeNumber parent : parents[type]) {
      const UTTypeNumbers& inherited = types[parent].supertypes;
      supertypes.insert(supertypes.end(), inherited.begin(), inherited.end());
    }
    UTSort(supertypes);
    pairs += supertypes.size();
    if (pairs > UTMaximumPairs)
      return UTRefuse(error, UTTypeErrorTooMany, "the declared types conform to too many others");
  }
  return true;
}
