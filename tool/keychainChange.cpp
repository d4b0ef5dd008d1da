#include "tool/EntrySearch.h"
#include "tool/Failure.h"
#include "tool/KeychainRequest.h"

namespace {

bool renames(const KeychainRequest& request) {
  return request.newAccount || request.newService || request.newServer || request.newLabel;
}

/// Sets the attribute to the argument, if there is one.
void set(std::optional<SecText>& attribute, const std::optional<std::string>& argument) {
  if (argument) attribute = textOfArgument(*argument);
}

/// Returns what the entry is to become. Throws Failure for names that no entry may have.
SecAttributes changed(SecAttributes attributes, const KeychainRequest& request) {
  for (const auto* name : {&request.newAccount, &request.newService, &request.newServer})
    if (*name && (*name)->empty()) throw Failure(libraryText("The keychain attributes are invalid"));
  set(attributes.account, request.newAccount);
  set(attributes.service, request.newService);
  set(attributes.server, request.newServer);
  set(attributes.label, request.newLabel ? request.newLabel : request.label);
  return attributes;
}

SecAttributes presentAttributes(const KeychainRequest& request) {
  std::optional<SecRow> row;
  readIn(*request.storage, "the keychain cannot be read"_text, [&](SecTransaction& transaction) {
    row = onlyMatch(transaction, request.entry.queries().front(), SecSecrets::skip);
  });
  if (!row) failWithoutMatch();
  return std::move(row->entry.attributes);
}

std::optional<SecSecret> newSecret(const KeychainRequest& request) {
  if (renames(request) && !request.password) return std::nullopt;
  const NSRef<NSData> password = readPassword();
  if (password->length() == 0) throw Failure(libraryText("The keychain attributes are invalid"));
  return SecSecret(password->bytes());
}

}  // namespace

int updateEntry(const KeychainRequest& request) {
  const SecAttributes present = presentAttributes(request);
  const SecAttributes attributes = changed(present, request);
  const std::optional<SecSecret> secret = newSecret(request);
  // The entry that was found, and no other, even if others have come to match in the meantime.
  changeIn(*request.storage, "the entry was not changed"_text, [&](SecTransaction& transaction) {
    const auto row = exactMatch(transaction, present, SecSecrets::skip);
    if (!row) failWithoutMatch();
    transaction.replace(row->number, attributes, secret);
  });
  return 0;
}

int deleteEntries(const KeychainRequest& request) {
  const std::vector<SecQuery> queries = request.entry.queries();
  std::vector<SecRow> rows;
  changeIn(*request.storage, "nothing was deleted"_text, [&](SecTransaction& transaction) {
    if (request.all) {
      rows = matches(transaction, queries, SecSecrets::skip);
    } else if (auto row = onlyMatch(transaction, queries.front(), SecSecrets::skip)) {
      rows.push_back(std::move(*row));
    }
    for (const SecRow& row : rows) transaction.remove(row.number);
  });
  if (rows.empty()) complain("there was no such entry"_text);
  return 0;
}
