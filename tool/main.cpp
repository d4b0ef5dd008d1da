#include <VXFoundation/VXFoundation.h>

#include <sstream>

#include "tool/Failure.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"
#include "tool/UsageError.h"

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

int complain(const Message& message, int status) {
  ::complain(message);
  return status;
}

/// The parser also reports help and version as errors, with the exit code 0.
int finish(CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() != 0) return complain(explainUsageError(app, error), wrongUsage);
  std::ostringstream text;
  app.exit(error, text);
  writeStandardOutput(text.str());
  return 0;
}

std::string version(bool verbose) {
  const std::string text = "vxfoundation " VX_VERSION;
  return verbose ? text + "\nkernels: " + VXCodecKernelsInUse() : text;
}

void addSubcommands(CLI::App& app, Action& action) {
  app.require_subcommand(1);
  addEncode(app, action);
  addDecode(app, action);
  addDigest(app, action);
  addKeychain(app, action);
  addConforms(app, action);
  addType(app, action);
}

/// What the tool is under each of its names.
struct Program {
  std::string_view name;
  const char* purpose;
  void (*add)(CLI::App& app, Action& action);
};

constexpr Program programs[] = {
    {"git-credential-vxfoundation", "Keep the passwords of git in the keychain", addGitHelper},
    {"docker-credential-vxfoundation", "Keep the passwords of Docker in the keychain", addDockerHelper},
    {"vxfoundation", "Codecs, digests, types of files and the keychain on the command line", addSubcommands}};

const Program& programNamed(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const auto found = std::find_if(std::begin(programs), std::prev(std::end(programs)),
                                  [name](const Program& program) { return program.name == name; });
  return *found;
}

int run(int argc, char** argv) {
  const Program& program = programNamed(argc > 0 ? argv[0] : "");
  CLI::App app(program.purpose, std::string(program.name));
  app.set_version_flag(
      "--version", [&app] { return version(app.count("--verbose") > 0); },
      "Print the version; with --verbose, also the codec kernels in use");
  app.fallthrough();  // --verbose is accepted anywhere
  app.add_flag_callback(
      "--verbose", [] { NSLogSetSink({}); }, "Show the library's log");
  Action action;
  program.add(app, action);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return finish(app, error);
  }
  const int status = action();
  endStandardOutput();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  guardStandardStreams();
  guardSecrets();
  NSLogSetSink([](std::string_view) {});  // the tool's message is the only line
  try {
    return run(argc, argv);
  } catch (const OutputClosed&) {
    return failed;  // whoever closed it knows
  } catch (const Failure& failure) {
    complain(failure.what(), failed);
    std::cerr << failure.details() << std::flush;
    return failed;
  } catch (const std::bad_alloc&) {
    return complain("there is not enough memory"_text, failed);
  } catch (const std::exception& error) {
    return complain(error.what(), failed);
  }
}
