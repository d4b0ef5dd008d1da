#include <Security/Items/SecItemOperations.h>

#include <utility>
#include <vector>

#include <Security/SecFailure.h>

namespace {

constexpr std::size_t largestSecret = std::size_t{16} << 20;

void requireSize(const SecSecret& secret) {
  secRequire(secret.bytes().size() <= largestSecret, errSecDataTooLarge);
}

SecRow findOldest(SecTransaction& transaction, const SecAttributes& query) {
  std::optional<SecRow> oldest;
  transaction.find(query, [&](SecRow row) {
    oldest = std::move(row);
    return false;
  });
  secRequire(oldest.has_value(), errSecItemNotFound);
  return std::move(*oldest);
}

template <class Value>
void change(std::optional<Value>& held, const std::optional<Value>& wanted) {
  if (wanted) held = wanted;
}

void apply(const SecChanges& changes, SecEntry& entry) {
  SecAttributes& attributes = entry.attributes;
  change(attributes.account, changes.attributes.account);
  change(attributes.service, changes.attributes.service);
  change(attributes.server, changes.attributes.server);
  change(attributes.path, changes.attributes.path);
  change(attributes.port, changes.attributes.port);
  change(attributes.protocol, changes.attributes.protocol);
  change(attributes.label, changes.attributes.label);
  if (changes.secret) entry.secret = changes.secret->clone();
}

}  // namespace

void secAdd(SecTransaction& transaction, const SecEntry& entry) {
  requireSize(entry.secret);
  transaction.insert(entry);
}

SecEntry secCopyMatching(SecTransaction& transaction, const SecAttributes& query) {
  return findOldest(transaction, query).entry;
}

void secUpdate(SecTransaction& transaction, const SecAttributes& query, const SecChanges& changes) {
  secRequire(changes.attributes.itemClass == query.itemClass, errSecParam);
  if (changes.secret) requireSize(*changes.secret);
  SecRow row = findOldest(transaction, query);
  apply(changes, row.entry);
  transaction.replace(row.number, row.entry);
}

void secDelete(SecTransaction& transaction, const SecAttributes& query) {
  std::vector<std::int64_t> numbers;
  transaction.find(query, [&](const SecRow& row) {
    numbers.push_back(row.number);
    return true;
  });
  secRequire(!numbers.empty(), errSecItemNotFound);
  for (const std::int64_t number : numbers) transaction.remove(number);
}
