#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <sstream>

#include "fuzz/Fuzz.h"

int toolMain(int argc, char** argv);

// The tool, on any command line and input: it ends with one of its three statuses, says in one line why it
// did not do what it was asked, and then writes no output.
//
// An input is the arguments, one a line, an empty line, and what is on standard input.
namespace {

struct Outcome {
  int status;
  std::string output, messages;
};

/// A folder for all that the tool may write, and streams in memory.
class Surroundings {
 public:
  Surroundings() {
    std::string name = std::filesystem::temp_directory_path() / "vxtool.XXXXXX";
    fuzzRequire(::mkdtemp(name.data()) != nullptr, "there is a temporary folder");
    folder_ = name;
    for (const char* variable : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"})
      ::setenv(variable, name.c_str(), 1);
  }
  ~Surroundings() { std::filesystem::remove_all(folder_); }

  Outcome run(std::vector<std::string> arguments, std::string_view input) {
    const std::filesystem::path usualFolder = std::filesystem::current_path();
    std::filesystem::current_path(folder_);
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) std::filesystem::remove_all(entry);
    replaceContent(in_, input);
    replaceContent(out_, "");
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    std::ostringstream messages;
    std::streambuf* const usual = std::cerr.rdbuf(messages.rdbuf());
    const int status = toolMain(static_cast<int>(arguments.size()), pointers.data());
    std::cerr.rdbuf(usual);
    std::filesystem::current_path(usualFolder);
    return {status, contentOf(out_), messages.str()};
  }

 private:
  static int inMemory(int stream) {
    const int file = ::memfd_create("stream", MFD_CLOEXEC);
    fuzzRequire(::dup2(file, stream) == stream, "a stream can be replaced");
    return file;
  }
  static void replaceContent(int file, std::string_view content) {
    const bool replaced =
        ::ftruncate(file, 0) == 0 && ::lseek(file, 0, SEEK_SET) == 0 &&
        ::write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    fuzzRequire(replaced && ::lseek(file, 0, SEEK_SET) == 0, "a stream can be filled");
  }
  static std::string contentOf(int file) {
    std::string content(static_cast<std::size_t>(::lseek(file, 0, SEEK_END)), '\0');
    const ssize_t count = ::pread(file, content.data(), content.size(), 0);
    fuzzRequire(count == static_cast<ssize_t>(content.size()), "a stream can be read");
    return content;
  }

  std::filesystem::path folder_;
  int in_ = inMemory(STDIN_FILENO), out_ = inMemory(STDOUT_FILENO);
};

/// One folder down at most, so that the tool keeps to the one that it is given.
std::vector<std::string> argumentsFrom(FuzzInput& input) {
  std::vector<std::string> arguments{"vxfoundation"};
  while (!input.atEnd()) {
    std::string argument(input.upTo('\n'));
    if (argument.empty()) break;
    std::replace(argument.begin(), argument.end(), '/', '|');
    arguments.emplace_back(argument.c_str());  // an argument ends at its first NUL
  }
  return arguments;
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
  fuzzRequire(saysNo || lines == 1, "one line says why");
  fuzzRequire(saysNo || outcome.output.empty(), "there is no output of what failed");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Surroundings surroundings;
  FuzzInput input(data, size);
  const std::vector<std::string> arguments = argumentsFrom(input);
  if (has(arguments, "--passphrase-fd")) return 0;  // it would read the fuzzer's own files
  judge(arguments, surroundings.run(arguments, input.rest()));
  return 0;
}
