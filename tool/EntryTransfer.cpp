#include "tool/EntryTransfer.h"

#include <algorithm>

#include "tool/EntryFields.h"
#include "tool/EntrySearch.h"
#include "tool/Failure.h"

namespace {

bool isSame(const SecEntry& one, const SecEntry& other) {
  return one.attributes == other.attributes && std::ranges::equal(one.secret.bytes(), other.secret.bytes());
}

/// One transaction that puts entries.
struct Transfer {
  SecTransaction& transaction;
  const ExistingEntries& existing;
  std::vector<SecRow> conflicts = {};

  void put(const SecEntry& entry) {
    auto row = exactMatch(transaction, entry.attributes, SecSecrets::read);
    if (!row) return transaction.insert(entry);
    if (isSame(row->entry, entry)) return;
    if (existing.replace) return transaction.replace(row->number, entry.attributes, entry.secret.clone());
    conflicts.push_back(std::move(*row));
  }
};

}  // namespace

void ExistingEntries::addOptions(CLI::App& command) {
  CLI::Option* skipping = command.add_flag("--skip", skip, "Leave entries that exist with other content");
  command.add_flag("--replace", replace, "Replace entries that exist with other content")->excludes(skipping);
}

std::string putEntries(SecStorage& storage, std::span<const SecRow> rows, const ExistingEntries& existing) {
  std::size_t skipped = 0;
  changeIn(storage, "the entries were not stored"_text, [&](SecTransaction& transaction) {
    Transfer transfer{transaction, existing};
    for (const SecRow& row : rows) transfer.put(row.entry);
    skipped = transfer.conflicts.size();
    if (skipped > 0 && !existing.skip)
      throw Failure("entries exist with other content; see --skip and --replace"_text,
                    tableOf(transfer.conflicts));
  });
  const std::string stored = "entries: " + std::to_string(rows.size() - skipped);
  return existing.skip ? stored + ", skipped: " + std::to_string(skipped) : stored;
}
