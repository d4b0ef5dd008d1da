#include <VXFoundation/VXFoundation.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tool/Failure.h"
#include "tool/Input.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

using Begin = std::function<VXDigest()>;

/// Returns the digest as other tools write it, in lower case.
std::string digestOf(const std::string& file, const Begin& begin) {
  Input input(file);
  VXDigest digest = begin();
  Progress progress("digesting", input.length());
  input.forEachPiece(progress, [&](std::span<const std::byte> bytes) { digest.update(bytes); });
  auto text = std::string(*VXBaseConversion::base16String(*digest.finish()));
  for (char& digit : text) {
    if (digit >= 'A') digit |= 0x20;
  }
  return text;
}

/// Returns the digest and the name in the form that other tools write, and check: with a backslash before
/// both if the name has characters that are written as escapes.
std::string lineOf(const std::string& digest, const std::string& file) {
  std::string name;
  for (const char c : file) {
    if (c == '\\')
      name += "\\\\";
    else if (c == '\n')
      name += "\\n";
    else if (c == '\r')
      name += "\\r";
    else
      name += c;
  }
  return (name == file ? "" : "\\") + digest + "  " + name + '\n';
}

int digestFiles(const std::vector<std::string>& files, const Begin& begin) {
  int status = 0;
  for (const std::string& file : files) {
    std::string line;
    try {
      line = lineOf(digestOf(file, begin), file);
    } catch (const Failure& failure) {
      complain(failure.what());
      status = 1;
    }
    writeStandardOutput(line);
  }
  return status;
}

int digest(const std::vector<std::string>& files, const Begin& begin) {
  if (!files.empty()) return digestFiles(files, begin);
  writeStandardOutput(digestOf("-", begin) + '\n');
  return 0;
}

int authenticate(const std::vector<std::string>& files, const std::string& keyFile) {
  const NSRef<NSData> key = readSecretFile(keyFile);
  return digest(files, [&] { return VXDigest::HMAC_SHA1_WithSecretKey(*key); });
}

template <class Run>
CLI::App* addAlgorithm(CLI::App& parent, Action& action, const char* name, const char* purpose, Run run) {
  CLI::App* command = parent.add_subcommand(name, purpose);
  const auto files = std::make_shared<std::vector<std::string>>();
  command->add_option("FILE", *files, "The files to read; - or none for standard input");
  command->callback([files, run, &action] { action = [files, run] { return run(*files); }; });
  return command;
}

template <VXDigest (*begin)()>
int digest(const std::vector<std::string>& files) {
  return digest(files, begin);
}

}  // namespace

void addDigest(CLI::App& app, Action& action) {
  CLI::App* parent = app.add_subcommand("digest", "Read bytes, write their digest in hexadecimal");
  parent->require_subcommand(1);
  addAlgorithm(*parent, action, "md5", "The MD5 digest", digest<VXDigest::MD5>);
  addAlgorithm(*parent, action, "sha1", "The SHA-1 digest", digest<VXDigest::SHA1>);
  addAlgorithm(*parent, action, "sha256", "The SHA-256 digest", digest<VXDigest::SHA256>);
  const auto keyFile = std::make_shared<std::string>();
  addAlgorithm(*parent, action, "hmac-sha1", "The HMAC-SHA1 under a key",
               [keyFile](const auto& files) { return authenticate(files, *keyFile); })
      ->add_option("--key-file", *keyFile, "The file whose exact content is the key")
      ->required();
}
