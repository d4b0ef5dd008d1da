#include "tool/BrowserCSV.h"
#include "tool/EntryJSON.h"
#include "tool/KeychainRequest.h"
#include "tool/SecretText.h"
#include "tool/StandardStreams.h"

namespace {

bool isJSON(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  return start != text.npos && text[start] == '[';
}

BrowserCSV parsed(std::string_view text) {
  return isJSON(text) ? BrowserCSV{rowsOfJSON(text), {}} : readBrowserCSV(text);
}

}  // namespace

int importEntries(const KeychainRequest& request) {
  const bool isInput = !request.file || *request.file == "-";
  const NSRef<NSData> file = isInput ? readSecretInput() : readSecretFile(*request.file);
  const BrowserCSV content = parsed(textOf(file->bytes()));
  std::string report = "imported, " + putEntries(*request.storage, content.rows, request.existing);
  for (const std::string& column : content.leftOut)
    report += (&column == content.leftOut.data() ? "; left out: " : ", ") + column;
  writeStandardOutput(report + '\n');
  return 0;
}
