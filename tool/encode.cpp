#include <VXFoundation/VXFoundation.h>

#include <map>
#include <memory>
#include <string>

#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

using Encoder = Ref<NSString> (*)(const NSData&);

const std::map<std::string, Encoder> encoders = {
    {"base64", VXBaseConversion::base64String},
};

int encode(Encoder encoder) {
  const Ref<NSString> text = encoder(*readStandardInput());
  text->visit([](auto units) { writeStandardOutput(std::as_bytes(std::span(units))); });
  writeStandardOutput("\n");
  return 0;
}

}  // namespace

void addEncode(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("encode", "Read bytes, write them as text and a newline");
  const auto form = std::make_shared<std::string>();
  command->add_option("FORM", *form, "How to write them")->required()->check(CLI::IsMember(encoders));
  command->callback([form, &action] { action = [form] { return encode(encoders.at(*form)); }; });
}
