#include <VXFoundation/VXFoundation.h>

#include <memory>
#include <string>

#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

int writeDigest(const NSRef<NSData>& digest) {
  auto text = std::string(*VXBaseConversion::base16String(*digest));
  for (char& digit : text) {
    if (digit >= 'A') digit |= 0x20;  // in lower case, as other digest tools write it
  }
  writeStandardOutput(text + '\n');
  return 0;
}

template <NSRef<NSData> (*digest)(const NSData&)>
int digestInput() {
  return writeDigest(digest(*readStandardInput()));
}

int authenticateInput(const std::string& keyFile) {
  const NSRef<NSData> key = readSecretFile(keyFile);
  return writeDigest(CXHashing::HMAC_SHA1_WithSecretKey(*readStandardInput(), key));
}

void addAuthentication(CLI::App& digest, Action& action) {
  CLI::App* command = digest.add_subcommand("hmac-sha1", "The HMAC-SHA1 under a key");
  const auto keyFile = std::make_shared<std::string>();
  command->add_option("--key-file", *keyFile, "The file whose exact content is the key")->required();
  command->callback([keyFile, &action] { action = [keyFile] { return authenticateInput(*keyFile); }; });
}

}  // namespace

void addDigest(CLI::App& app, Action& action) {
  CLI::App* digest = app.add_subcommand("digest", "Read bytes, write their digest in hexadecimal");
  digest->require_subcommand(1);
  digest->add_subcommand("md5", "The MD5 digest")->callback([&action] {
    action = digestInput<CXHashing::MD5Hash>;
  });
  digest->add_subcommand("sha1", "The SHA-1 digest")->callback([&action] {
    action = digestInput<CXHashing::SHA1Hash>;
  });
  addAuthentication(*digest, action);
}
