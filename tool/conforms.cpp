#include <VXFoundation/VXFoundation.h>

#include <memory>
#include <string>
#include <vector>

#include "tool/Failure.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

/// What an argument names a type by.
struct Notation {
  bool isMIMEType = false;
  bool isExtension = false;
};

struct Question {
  std::string type;
  Notation notation;
  std::vector<std::string> others;
  Notation notationOfOthers;
};

std::string complaintAbout(const std::string& type) {
  return NSString::stringWithUTF8String(type) ? "" : "the name of a type must be UTF-8";
}

NSRef<NSString> identifierFrom(const std::string& name, const Notation& notation) {
  if (!notation.isMIMEType && !notation.isExtension) return NSString::stringWithString(name);
  const NSRefPtr<NSString> identifier =
      UTTypeIdentifierForTag(notation.isMIMEType ? UTTagClassMIMEType : UTTagClassFilenameExtension, name);
  if (!identifier)
    throw Failure((notation.isMIMEType ? "'{1}' is not a MIME type"_text
                                       : "'{1}' is not a filename extension"_text)(name));
  return identifier;
}

int conforms(const Question& question) {
  const NSRef<NSMutableArray> others = NSMutableArray::arrayWithCapacity(question.others.size());
  for (const std::string& other : question.others)
    others->addObject(identifierFrom(other, question.notationOfOthers));
  const bool yes =
      VXUTTypeConformsToAnyInCollection(identifierFrom(question.type, question.notation), others);
  writeStandardOutput(yes ? "yes\n" : "no\n");
  return yes ? 0 : 1;
}

void addNotation(CLI::App& command, const std::string& prefix, const std::string& subject,
                 Notation& notation) {
  CLI::Option* mimeType =
      command.add_flag("--" + prefix + "mime", notation.isMIMEType, subject + " a MIME type");
  command.add_flag("--" + prefix + "extension", notation.isExtension, subject + " a filename extension")
      ->excludes(mimeType);
}

}  // namespace

void addConforms(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("conforms", "Show whether a type conforms to any of the others");
  const auto question = std::make_shared<Question>();
  command->add_option("TYPE", question->type, "The type to check")->required()->check(complaintAbout);
  command->add_option("OTHER", question->others, "The types that it may conform to")
      ->required()
      ->check(complaintAbout);
  addNotation(*command, "", "TYPE is", question->notation);
  addNotation(*command, "to-", "Each OTHER is", question->notationOfOthers);
  command->callback([question, &action] { action = [question] { return conforms(*question); }; });
}
