// The tool as a person meets it: each line of vectors/tool.tsv is a shell command with the exit status,
// the output and the message that it must give. $tool is the tool; the folder is empty to begin with.
#include <stdlib.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "Support.h"

namespace {

namespace fs = std::filesystem;

struct Case {
  std::string name, command, status, output, message;
};

void PrintTo(const Case& shown, std::ostream* stream) { *stream << shown.command; }

std::string contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<Case> readCases() {
  std::vector<Case> cases;
  for (auto& row : vectors("tool.tsv")) {
    row.resize(5);
    cases.push_back({row[0], row[1], row[2], row[3], row[4]});
  }
  return cases;
}

class ToolTest : public testing::TestWithParam<Case> {
 protected:
  ToolTest() {
    std::string pattern = fs::temp_directory_path() / "vxfoundation-tool-XXXXXX";
    folder_ = mkdtemp(pattern.data());
    fs::create_directory(folder_ / "work");
  }
  ~ToolTest() override { fs::remove_all(folder_); }

  int run(const std::string& command) {
    setenv("tool", VX_TOOL, 1);
    setenv("folder", folder_.c_str(), 1);
    setenv("LC_ALL", "C", 1);
    std::ofstream(folder_ / "script") << command << '\n';
    const int status = std::system("cd \"$folder/work\" && sh ../script </dev/null >../output 2>../message");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string written(const char* name) { return contentOf(folder_ / name); }

 private:
  fs::path folder_;
};

TEST_P(ToolTest, AnswersAsTheTableSays) {
  const Case& expected = GetParam();
  EXPECT_EQ(run(expected.command), std::stoi(expected.status)) << written("message");
  if (expected.output != "*") {
    EXPECT_EQ(written("output"), expected.output.empty() ? "" : expected.output + '\n');
  }
  const std::string lines = expected.message.empty() ? "" : "vxfoundation: " + expected.message + '\n';
  EXPECT_TRUE(std::regex_match(written("message"), std::regex(lines))) << written("message");
}

INSTANTIATE_TEST_SUITE_P(Table, ToolTest, testing::ValuesIn(readCases()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
