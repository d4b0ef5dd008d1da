#include <Security/Items/SecIdentity.h>

namespace {

template <class Value>
bool agrees(const std::optional<Value>& wanted, const std::optional<Value>& held) {
  return !wanted || wanted == held;
}

template <class Value>
bool agreesOrDefault(const std::optional<Value>& wanted, const std::optional<Value>& held) {
  return !wanted || *wanted == held.value_or(Value());
}

}  // namespace

SecAttributes secIdentity(const SecAttributes& attributes) {
  SecAttributes identity = attributes;
  identity.label.reset();
  if (identity.itemClass != SecItemClass::internetPassword) return identity;
  if (!identity.path) identity.path.emplace();
  if (!identity.port) identity.port.emplace(0);
  return identity;
}

bool secMatches(const SecAttributes& query, const SecAttributes& entry) {
  return query.itemClass == entry.itemClass && agrees(query.account, entry.account) &&
         agrees(query.service, entry.service) && agrees(query.server, entry.server) &&
         agreesOrDefault(query.path, entry.path) && agreesOrDefault(query.port, entry.port) &&
         agrees(query.protocol, entry.protocol);
}
