#include "tool/EntryFields.h"
#include "tool/EntryJSON.h"
#include "tool/EntrySearch.h"
#include "tool/KeychainRequest.h"
#include "tool/StandardStreams.h"

namespace {

void writeEntry(const SecEntry& entry, const KeychainRequest& request) {
  if (request.json) {
    JSONText text;
    appendEntry(text, entry, request.password ? JSONSecrets::write : JSONSecrets::leave);
    text << "\n";
    writeStandardOutput(text.bytes());
  } else if (request.password) {
    writeStandardOutput(entry.secret.bytes());
    writeStandardOutput("\n");
  } else {
    writeStandardOutput(linesOf(entry.attributes));
  }
}

}  // namespace

int showEntry(const KeychainRequest& request) {
  std::optional<SecRow> row;
  readIn(*request.storage, "the keychain cannot be read"_text, [&](SecTransaction& transaction) {
    row = onlyMatch(transaction, request.entry.queries().front(),
                    request.password ? SecSecrets::read : SecSecrets::skip);
  });
  if (!row) failWithoutMatch();
  writeEntry(row->entry, request);
  return 0;
}

int listEntries(const KeychainRequest& request) {
  const std::vector<SecRow> rows = matches(*request.storage, request.entry.queries(), SecSecrets::skip);
  if (request.json)
    writeStandardOutput(arrayOf(rows, JSONSecrets::leave).bytes());
  else
    writeStandardOutput(tableOf(rows));
  return 0;
}
