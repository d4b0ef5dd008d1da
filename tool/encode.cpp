#include <VXFoundation/VXFoundation.h>

#include <map>
#include <memory>
#include <string>

#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

using Encoder = void (*)(const NSRef<NSData>& bytes);

template <NSRef<NSString> (*encode)(const NSData&)>
void writeText(const NSRef<NSData>& bytes) {
  encode(*bytes)->visit([](auto units) { writeStandardOutput(std::as_bytes(std::span(units))); });
}

void writeURLText(const NSRef<NSData>& bytes) { writeStandardOutput(VXURLEncodeData(bytes)->bytes()); }

const std::map<std::string, Encoder> encoders = {
    {"base64", writeText<VXBaseConversion::base64String>},
    {"base32", writeText<VXBaseConversion::base32String>},
    {"base16", writeText<VXBaseConversion::base16String>},
    {"base2", writeText<VXBaseConversion::base2String>},
    {"url", writeURLText},
};

int encode(const std::string& form) {
  encoders.at(form)(readStandardInput());
  writeStandardOutput("\n");
  return 0;
}

}  // namespace

void addEncode(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("encode", "Read bytes, write them as text followed by a newline");
  const auto form = std::make_shared<std::string>();
  command->add_option("FORM", *form, "How to encode the bytes")->required()->check(CLI::IsMember(encoders));
  command->callback([form, &action] { action = [form] { return encode(*form); }; });
}
