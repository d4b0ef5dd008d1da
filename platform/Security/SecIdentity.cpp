#include <Security/SecIdentity.h>

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

bool secMatches(const SecQuery& query, const SecAttributes& entry) {
  const SecAttributes& wanted = query.attributes;
  const bool agree = wanted.itemClass == entry.itemClass && agrees(wanted.account, entry.account) &&
                     agrees(wanted.service, entry.service) && agrees(wanted.server, entry.server) &&
                     agreesOrDefault(wanted.path, entry.path) && agreesOrDefault(wanted.port, entry.port) &&
                     agrees(wanted.protocol, entry.protocol);
  // Identities are copies, which most entries must not cost.
  return agree && (!query.exactly || secIdentity(wanted) == secIdentity(entry));
}
