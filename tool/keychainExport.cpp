#include <unistd.h>

#include "tool/EntryJSON.h"
#include "tool/EntrySearch.h"
#include "tool/Failure.h"
#include "tool/KeychainRequest.h"
#include "tool/PrivateFile.h"
#include "tool/StandardStreams.h"
#include "tool/Terminal.h"

namespace {

/// Throws Failure unless the output is a terminal and the person there wants the passwords on it.
void requireConsent() {
  if (isatty(STDOUT_FILENO) != 1 || !isOnTerminal())
    throw Failure("passwords are written only to a file that is named, or to a terminal"_text);
  if (!agrees("Show all passwords on this terminal?"_text)) throw Failure("nothing was exported"_text);
}

}  // namespace

int exportEntries(const KeychainRequest& request) {
  if (!request.file) requireConsent();
  const auto rows = matches(*request.storage, request.entry.queries(), SecSecrets::read);
  const JSONText json = arrayOf(rows, JSONSecrets::write);
  if (!request.file) return writeStandardOutput(json.bytes()), 0;
  writePrivateFile(*request.file, json.bytes());
  writeStandardOutput("exported, entries: " + std::to_string(rows.size()) + '\n');
  return 0;
}
