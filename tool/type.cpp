#include <VXFoundation/VXFoundation.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

using Strings = std::vector<std::string>;
using JSON = nlohmann::ordered_json;

std::string complaintAbout(const std::string& name) {
  return NSString::stringWithUTF8String(name) ? "" : "a file name must be UTF-8";
}

JSON JSONFrom(const NSRefPtr<NSString>& string) {
  return string ? JSON(static_cast<std::string>(*string)) : JSON(nullptr);
}

JSON descriptionOf(const std::string& name) {
  const NSRefPtr<NSString> type = UTTypeIdentifierForFileName(name);
  return {{"name", name},
          {"identifier", JSONFrom(type)},
          {"mimeType", JSONFrom(UTTypePreferredTag(type, UTTagClassMIMEType))},
          {"extension", JSONFrom(UTTypePreferredTag(type, UTTagClassFilenameExtension))}};
}

bool isControl(char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }

// A name with control characters neither moves the cursor nor looks like two names.
std::string cell(const JSON& value) {
  std::string text = value.is_null() ? "-" : value.get<std::string>();
  std::replace_if(text.begin(), text.end(), isControl, '?');
  return text;
}

void showLine(const JSON& type) {
  writeStandardOutput(cell(type["identifier"]) + '\t' + cell(type["mimeType"]) + '\t' +
                      cell(type["extension"]) + '\t' + cell(type["name"]) + '\n');
}

int showTypes(const Strings& names, bool asJSON) {
  JSON types = JSON::array();
  for (const std::string& each : names) types.push_back(descriptionOf(each));
  if (asJSON)
    writeStandardOutput(types.dump(2) + '\n');
  else
    std::for_each(types.begin(), types.end(), showLine);
  return 0;
}

}  // namespace

void addType(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "type", "Show the type identifier, MIME type and extension of files, by their names alone");
  const auto names = std::make_shared<Strings>();
  const auto asJSON = std::make_shared<bool>(false);
  command->add_option("NAME", *names, "The names; the files need not exist")
      ->required()
      ->check(complaintAbout);
  command->add_flag("--json", *asJSON, "Write an array of objects");
  command->callback(
      [names, asJSON, &action] { action = [names, asJSON] { return showTypes(*names, *asJSON); }; });
}
