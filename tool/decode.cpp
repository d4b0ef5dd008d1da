#include <VXFoundation/VXFoundation.h>

#include <map>
#include <memory>
#include <string>

#include "tool/Failure.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

using Decoder = NSRefPtr<NSData> (*)(const NSRef<NSData>&);

template <NSRefPtr<NSData> (*decode)(NSStringArg)>
NSRefPtr<NSData> decodeASCII(const NSRef<NSData>& bytes) {
  const NSRefPtr<NSString> text = NSString::stringWithData(bytes, NSASCIIStringEncoding);
  return text ? decode(text) : nullptr;
}

NSRefPtr<NSData> decodeURL(const NSRef<NSData>& bytes) { return VXURLDecodeData(bytes); }

const std::map<std::string, Decoder> decoders = {
    {"base64", decodeASCII<VXBaseConversion::dataWithBase64String>},
    {"base32", decodeASCII<VXBaseConversion::dataWithBase32String>},
    {"base16", decodeASCII<VXBaseConversion::dataWithBase16String>},
    {"url", decodeURL},
};

/// Removes the newline that `encode` and echo add.
NSRef<NSData> withoutFinalNewline(NSRef<NSData> bytes) {
  const auto content = bytes->bytes();
  if (content.empty() || content.back() != std::byte{'\n'}) return bytes;
  return NSData::dataWithBytes(content.first(content.size() - 1));
}

int decode(const std::string& form) {
  const NSRefPtr<NSData> bytes = decoders.at(form)(withoutFinalNewline(readStandardInput()));
  if (!bytes) throw Failure("the input is not " + form + " text");
  writeStandardOutput(bytes->bytes());
  return 0;
}

}  // namespace

void addDecode(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("decode", "Read text, write the bytes that it encodes");
  const auto form = std::make_shared<std::string>();
  command->add_option("FORM", *form, "How the text is encoded")->required()->check(CLI::IsMember(decoders));
  command->callback([form, &action] { action = [form] { return decode(*form); }; });
}
