#include <Security/Items/SecItemOperations.h>

#include <utility>

#include <Security/SecFailure.h>

namespace {

constexpr std::size_t largestSecret = std::size_t{16} << 20;

void requireSize(const SecSecret& secret) {
  secRequire(secret.bytes().size() <= largestSecret, errSecDataTooLarge);
}

/// Passes `visit` the rows that match, in their order, until it returns false.
void visitInOrder(SecTransaction& transaction, const SecQuery& query, SecSecrets secrets,
                  const std::function<bool(SecRow)>& visit) {
  std::optional<std::int64_t> first;
  bool goesOn = !query.exactly;
  transaction.find({query.attributes, true}, secrets, [&](SecRow row) {
    first = row.number;
    goesOn = visit(std::move(row)) && goesOn;
    return false;
  });
  if (!goesOn) return;
  transaction.find(query, secrets, [&](SecRow row) { return row.number == first || visit(std::move(row)); });
}

template <class Value>
void change(std::optional<Value>& held, const std::optional<Value>& wanted) {
  if (wanted) held = wanted;
}

void apply(const SecAttributes& changes, SecAttributes& attributes) {
  change(attributes.account, changes.account);
  change(attributes.service, changes.service);
  change(attributes.server, changes.server);
  change(attributes.path, changes.path);
  change(attributes.port, changes.port);
  change(attributes.protocol, changes.protocol);
  change(attributes.label, changes.label);
}

}  // namespace

void secAdd(SecTransaction& transaction, const SecEntry& entry) {
  requireSize(entry.secret);
  transaction.insert(entry);
}

std::vector<SecEntry> secCopyMatching(SecTransaction& transaction, const SecQuery& query, SecSecrets secrets,
                                      std::size_t limit) {
  std::vector<SecEntry> found;
  visitInOrder(transaction, query, secrets, [&](SecRow row) {
    found.push_back(std::move(row.entry));
    return found.size() < limit;
  });
  secRequire(!found.empty(), errSecItemNotFound);
  return found;
}

void secUpdate(SecTransaction& transaction, const SecQuery& query, const SecChanges& changes) {
  secRequire(changes.attributes.itemClass == query.attributes.itemClass, errSecParam);
  if (changes.secret) requireSize(*changes.secret);
  std::optional<SecRow> first;
  visitInOrder(transaction, query, SecSecrets::skip, [&](SecRow row) {
    first = std::move(row);
    return false;
  });
  secRequire(first.has_value(), errSecItemNotFound);
  apply(changes.attributes, first->entry.attributes);
  transaction.replace(first->number, first->entry.attributes, changes.secret);
}

void secDelete(SecTransaction& transaction, const SecQuery& query) {
  std::vector<std::int64_t> numbers;
  transaction.find(query, SecSecrets::skip, [&](const SecRow& row) {
    numbers.push_back(row.number);
    return true;
  });
  secRequire(!numbers.empty(), errSecItemNotFound);
  for (const std::int64_t number : numbers) transaction.remove(number);
}
