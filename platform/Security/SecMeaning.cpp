#include <Security/SecMeaning.h>

#include <utility>

#include <Security/SecIdentity.h>

namespace {

constexpr std::size_t largestSecret = std::size_t{16} << 20;

bool tooLarge(const SecSecret& secret) { return secret.bytes().size() > largestSecret; }

OSStatus findOldest(SecTransaction& transaction, const SecAttributes& query, SecRow& oldest) {
  bool found = false;
  const OSStatus status = transaction.find(query, [&](SecRow row) {
    oldest = std::move(row);
    found = true;
    return false;
  });
  if (status != errSecSuccess) return status;
  return found ? errSecSuccess : errSecItemNotFound;
}

/// An identity without a protocol also matches, as a query, entries that have one: hence the comparison.
OSStatus refuseTwin(SecTransaction& transaction, const SecAttributes& identity) {
  bool twin = false;
  const OSStatus status = transaction.find(identity, [&](const SecRow& row) {
    twin = secIdentity(row.entry.attributes) == identity;
    return !twin;
  });
  if (status != errSecSuccess) return status;
  return twin ? errSecDuplicateItem : errSecSuccess;
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

OSStatus secAdd(SecTransaction& transaction, const SecEntry& entry) {
  if (tooLarge(entry.secret)) return errSecDataTooLarge;
  const OSStatus status = refuseTwin(transaction, secIdentity(entry.attributes));
  return status == errSecSuccess ? transaction.insert(entry) : status;
}

OSStatus secCopyMatching(SecTransaction& transaction, const SecAttributes& query, SecEntry& found) {
  SecRow row;
  const OSStatus status = findOldest(transaction, query, row);
  if (status == errSecSuccess) found = std::move(row.entry);
  return status;
}

OSStatus secUpdate(SecTransaction& transaction, const SecAttributes& query, const SecChanges& changes) {
  if (changes.attributes.itemClass != query.itemClass) return errSecParam;
  if (changes.secret && tooLarge(*changes.secret)) return errSecDataTooLarge;
  SecRow row;
  OSStatus status = findOldest(transaction, query, row);
  if (status != errSecSuccess) return status;
  const SecAttributes before = secIdentity(row.entry.attributes);
  apply(changes, row.entry);
  const SecAttributes after = secIdentity(row.entry.attributes);
  if (after != before) status = refuseTwin(transaction, after);
  return status == errSecSuccess ? transaction.replace(row.number, row.entry) : status;
}

OSStatus secDelete(SecTransaction& transaction, const SecAttributes& query) {
  std::vector<std::int64_t> numbers;
  OSStatus status = transaction.find(query, [&](const SecRow& row) {
    numbers.push_back(row.number);
    return true;
  });
  if (status == errSecSuccess && numbers.empty()) status = errSecItemNotFound;
  for (auto number = numbers.begin(); status == errSecSuccess && number != numbers.end(); ++number)
    status = transaction.remove(*number);
  return status;
}
