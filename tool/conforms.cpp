#include <VXFoundation/VXFoundation.h>

#include <memory>
#include <string>
#include <vector>

#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

std::string complaintAbout(const std::string& identifier) {
  return NSString::stringWithUTF8String(identifier) ? "" : "a type identifier must be UTF-8";
}

int conforms(const std::string& type, const std::vector<std::string>& others) {
  const NSRef<NSMutableArray> collection = NSMutableArray::arrayWithCapacity(others.size());
  for (const std::string& other : others) collection->addObject(NSString::stringWithUTF8String(other));
  const bool yes = VXUTTypeConformsToAnyInCollection(NSString::stringWithUTF8String(type), collection);
  writeStandardOutput(yes ? "yes\n" : "no\n");
  return yes ? 0 : 1;
}

}  // namespace

void addConforms(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("conforms", "Show whether a type conforms to any of the others");
  const auto type = std::make_shared<std::string>();
  const auto others = std::make_shared<std::vector<std::string>>();
  command->add_option("TYPE", *type, "The type to check")->required()->check(complaintAbout);
  command->add_option("OTHER", *others, "The types that it may conform to")
      ->required()
      ->check(complaintAbout);
  command->callback(
      [type, others, &action] { action = [type, others] { return conforms(*type, *others); }; });
}
