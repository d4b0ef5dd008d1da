#include "tool/EntrySearch.h"

#include <Security/SecFailure.h>

#include <exception>

#include "tool/EntryFields.h"
#include "tool/Failure.h"

namespace {

void transact(SecStorage& storage, SecStorage::Access access, const Message& what,
              const SecStorage::Work& work) {
  std::exception_ptr thrown;  // storages let only SecFailure pass
  const OSStatus status = storage.transact(access, [&](SecTransaction& transaction) {
    try {
      work(transaction);
    } catch (const Failure&) {
      thrown = std::current_exception();
      throw SecFailure{errSecParam};
    }
  });
  if (thrown) std::rethrow_exception(thrown);
  requireSuccess(status, what);
}

}  // namespace

std::vector<SecRow> matches(SecTransaction& transaction, std::span<const SecQuery> queries,
                            SecSecrets secrets) {
  std::vector<SecRow> rows;
  for (const SecQuery& query : queries)
    transaction.find(query, secrets, [&](SecRow row) { return rows.push_back(std::move(row)), true; });
  return rows;
}

std::vector<SecRow> matches(SecStorage& storage, std::span<const SecQuery> queries, SecSecrets secrets) {
  std::vector<SecRow> rows;
  readIn(storage, "the keychain cannot be read"_text,
         [&](SecTransaction& transaction) { rows = matches(transaction, queries, secrets); });
  return rows;
}

std::optional<SecRow> exactMatch(SecTransaction& transaction, const SecAttributes& attributes,
                                 SecSecrets secrets) {
  std::optional<SecRow> exact;
  transaction.find({attributes, true}, secrets, [&](SecRow row) { return exact = std::move(row), false; });
  return exact;
}

std::optional<SecRow> onlyMatch(SecTransaction& transaction, const SecQuery& query, SecSecrets secrets) {
  std::vector<SecRow> rows = matches(transaction, {&query, 1}, SecSecrets::skip);
  if (rows.empty()) return std::nullopt;
  if (rows.size() == 1) return exactMatch(transaction, rows.front().entry.attributes, secrets);
  auto exact = exactMatch(transaction, query.attributes, secrets);
  if (!exact) throw Failure("several entries match; name one of them exactly"_text, tableOf(rows));
  return exact;
}

void readIn(SecStorage& storage, const Message& what, const SecStorage::Work& work) {
  transact(storage, SecStorage::Access::read, what, work);
}

void changeIn(SecStorage& storage, const Message& what, const SecStorage::Work& work) {
  transact(storage, SecStorage::Access::change, what, work);
}

void failWithoutMatch() {
  throw failureOf(errSecItemNotFound,
                  libraryText("A keychain item matching the attributes could not be found in the keychain"));
}
