#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <sstream>

#include "tests/support/Fuzz.h"
#include "tests/support/SecFileTests.h"

int toolMain(int argc, char** argv);

// The tool, with any command line and input: it ends with one of its three statuses; if it fails, it says why
// in one line and writes no output; a digest of several files and an import say it for each of them.
//
// An input is the arguments, one per line, after the tool's name if it is one of its other two, an empty
// line, and the standard input.
namespace {

struct Outcome {
  int status;
  std::string output, messages;
};

/// Runs the tool in an empty folder for all that it may write, with files next to that folder as its streams.
Outcome run(const std::filesystem::path& root, std::vector<std::string> arguments, std::string_view input) {
  const std::filesystem::path home = root / "home", in = root / "in", out = root / "out";
  std::filesystem::remove_all(home);
  std::filesystem::create_directory(home);
  for (const char* variable : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"})
    ::setenv(variable, home.c_str(), 1);
  ::unsetenv("VXFOUNDATION_KEYCHAIN");
  writeFile(in, input);
  fuzzRequire(std::freopen(in.c_str(), "r", stdin) && std::freopen(out.c_str(), "w", stdout),
              "streams can be replaced");
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);

  const std::filesystem::path usualFolder = std::filesystem::current_path();
  std::filesystem::current_path(home);
  std::ostringstream messages;
  std::streambuf* const usual = std::cerr.rdbuf(messages.rdbuf());
  const int status = toolMain(static_cast<int>(arguments.size()), pointers.data());
  std::cerr.rdbuf(usual);
  std::filesystem::current_path(usualFolder);
  return {status, readFile(out), messages.str()};
}

/// Replaces slashes, so that the tool stays in its folder.
std::vector<std::string> argumentsFrom(FuzzInput& input) {
  std::vector<std::string> arguments{"vxfoundation"};
  while (!input.atEnd()) {
    std::string argument(input.upTo('\n'));
    if (argument.empty()) break;
    std::replace(argument.begin(), argument.end(), '/', '|');
    if (arguments.size() == 1 && argument.ends_with("-credential-vxfoundation")) arguments.clear();
    arguments.emplace_back(argument.c_str());  // an argument ends at its first NUL
  }
  return arguments;
}

/// Leaves the terminal at which passphrases would be asked for.
bool hasNoTerminal() {
  const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
  if (terminal < 0) return true;
  const bool left = ::ioctl(terminal, TIOCNOTTY) == 0;
  ::close(terminal);
  return left;
}

bool has(const std::vector<std::string>& arguments, std::string_view piece) {
  return std::any_of(arguments.begin(), arguments.end(),
                     [=](const std::string& argument) { return argument.find(piece) != std::string::npos; });
}

void judge(const std::vector<std::string>& arguments, const Outcome& outcome) {
  const auto lines = std::count(outcome.messages.begin(), outcome.messages.end(), '\n');
  const bool saysNo = outcome.status == 1 && outcome.output == "no\n" && has(arguments, "conforms");
  fuzzRequire(outcome.status >= 0 && outcome.status <= 2, "the status is one of three");
  if (has(arguments, "--verbose")) return;  // the log is among the messages
  if (outcome.status == 0) return fuzzRequire(lines == 0 || has(arguments, "delete"), "success is silent");
  const bool ofFiles = outcome.status == 1 && has(arguments, "digest");
  const bool ofEntries = outcome.status == 1 && has(arguments, "import");  // those in the way
  const bool isDocker = outcome.status == 1 && arguments.front() == "docker-credential-vxfoundation";
  if (isDocker) return fuzzRequire(lines == 0 && outcome.output.ends_with('\n'), "Docker reads the output");
  fuzzRequire(saysNo || lines == 1 || ((ofFiles || ofEntries) && lines > 1), "one line says why");
  fuzzRequire(saysNo || ofFiles || outcome.output.empty(), "a failure writes no output");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TemporaryPlace place;
  static const bool hasLeft = hasNoTerminal();
  fuzzRequire(hasLeft, "nobody is asked anything");
  FuzzInput input(data, size);
  const std::vector<std::string> arguments = argumentsFrom(input);
  if (has(arguments, "passphrase-fd")) return 0;  // it would read the fuzzer's own files
  judge(arguments, run(place.root, arguments, input.rest()));
  return 0;
}
