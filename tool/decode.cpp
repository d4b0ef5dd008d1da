#include <memory>
#include <string>

#include "tool/Forms.h"
#include "tool/Input.h"
#include "tool/Spool.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"
#include "tool/TextDecoder.h"

namespace {

using Bytes = TextDecoder::Bytes;

struct Request {
  std::string form, file = "-";
  bool ignoreNewlines = false;
};

void decode(const Request& request, Input& input, Progress&& progress, auto&& write) {
  TextDecoder decoder(request.form, input.name(), request.ignoreNewlines);
  input.forEachPiece(progress, [&](Bytes text) { write(decoder.update(text)); });
  write(decoder.finish());
}

/// Writes nothing before all of the text is known to be right.
int decode(const Request& request) {
  Input input(request.file);
  input.requireOtherOutput();
  if (!input.isRegular()) {
    Spool spool;
    decode(request, input, Progress("decoding"), [&](Bytes bytes) { spool.append(bytes); });
    spool.writeOut();
    return 0;
  }
  decode(request, input, Progress("checking", input.length()), [](Bytes) {});
  input.rewind();
  decode(request, input, Progress("decoding", input.length(), Progress::Output::written),
         [](Bytes bytes) { writeStandardOutput(bytes); });
  input.requireUnchanged();
  return 0;
}

}  // namespace

void addDecode(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("decode", "Read text, write the bytes that it encodes");
  const auto request = std::make_shared<Request>();
  command->add_option("FORM", request->form, "How the text is encoded")
      ->required()
      ->check(CLI::IsMember(decodedForms));
  command->add_option("FILE", request->file, "The file to read; - or none for standard input");
  command->add_flag("--ignore-newlines", request->ignoreNewlines, "Ignore the line breaks in the text");
  command->callback([request, &action] { action = [request] { return decode(*request); }; });
}
