// The tool as a person at a shell uses it: scripts/Tool.txt and, for single commands, vectors/tool.tsv.
#include <sys/wait.h>

#include <cstdlib>
#include <regex>
#include <sstream>

#include "tests/support/Files.h"
#include "tests/support/Vectors.h"

namespace {

struct Command {
  std::string text;
  std::string output;   // "*\n" for any
  std::string message;  // a regular expression
  int status = 0;
};

struct Case {
  std::string name;
  std::vector<Command> commands;
};

/// Adds the cases of vectors/tool.tsv, of one command each.
void addTable(std::vector<Case>& cases) {
  for (auto row : vectors("tool.tsv")) {
    row.resize(5);
    cases.push_back({row[0], {{row[1], row[3].empty() ? "" : row[3] + '\n', row[4], std::stoi(row[2])}}});
  }
}

void addLine(Case& current, const std::string& line) {
  std::vector<Command>& commands = current.commands;
  if (line.starts_with("$ "))
    commands.push_back({line.substr(2), "", "", 0});
  else if (line.starts_with("? "))
    commands.back().status = std::stoi(line.substr(2));
  else if (line.starts_with("! "))
    commands.back().message = line.substr(2);
  else if (line.starts_with("> "))
    commands.back().text += '\n' + line.substr(2);
  else
    commands.back().output += line + '\n';
}

std::vector<Case> allCases() {
  std::vector<Case> cases;
  addTable(cases);
  std::ifstream script(VX_TESTS "/scripts/Tool.txt");
  for (std::string line; std::getline(script, line);) {
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[' && line.size() > 2)  // not an array in JSON
      cases.push_back({line.substr(1, line.size() - 2), {}});
    else
      addLine(cases.back(), line);
  }
  return cases;
}

class ToolTest : public testing::TestWithParam<Case> {
 protected:
  /// Runs all commands in one shell, and writes the output, messages and status of each to separate files.
  void run(const std::vector<Command>& commands) {
    std::ostringstream script;
    for (std::size_t i = 0; i < commands.size(); ++i)
      script << "{\n"
             << commands[i].text << "\n} >../output" << i << " 2>../message" << i << "\necho $? >../status"
             << i << '\n';
    unsetenv("VXFOUNDATION_KEYCHAIN");
    setenv("tool", VX_TOOL, 1);
    setenv("vectors", VX_TESTS "/vectors", 1);
    setenv("tests", VX_TESTS, 1);
    setenv("LC_ALL", "C", 1);
    std::filesystem::create_directory(folder_.root / "work");
    setenv("XDG_CONFIG_HOME", (folder_.root / "work").c_str(), 1);
    writeFile(folder_.root / "script", script.str());
    EXPECT_EQ(
        std::system(
            ("cd " + (folder_.root / "work").string() + " && setsid -w sh ../script </dev/null").c_str()),
        0);
  }
  std::string written(const char* name, std::size_t command) {
    return readFile(folder_.root / (name + std::to_string(command)));
  }

 private:
  TemporaryFolder folder_;
};

TEST_P(ToolTest, MatchesTheTranscript) {
  const auto& commands = GetParam().commands;
  run(commands);
  for (std::size_t i = 0; i < commands.size(); ++i) {
    const Command& command = commands[i];
    const std::string message = written("message", i);
    EXPECT_EQ(written("status", i), std::to_string(command.status) + '\n') << command.text << '\n' << message;
    if (command.output != "*\n") {
      EXPECT_EQ(written("output", i), command.output) << command.text;
    }
    const std::string expected = command.message.empty() ? "" : "(vxfoundation: )?" + command.message + '\n';
    EXPECT_TRUE(std::regex_match(message, std::regex(expected))) << command.text << '\n' << message;
  }
}

INSTANTIATE_TEST_SUITE_P(Transcripts, ToolTest, testing::ValuesIn(allCases()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
